/// The libraries of FFmpeg and OpenCV are not built for the thread sanitizer, which does not see
/// how their threads agree among each other: what it intercepts there means nothing. Our own code
/// stays watched, but for where it empties memory that FFmpeg's threads hand to each other. OpenCV
/// cleans up after a thread inside the thread's own end, in a call that does not show where it comes
/// from.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "called_from_lib:libavcodec.so\n"
           "called_from_lib:libavformat.so\n"
           "called_from_lib:libavutil.so\n"
           "called_from_lib:libswscale.so\n"
           "called_from_lib:libopencv_core.so\n"
           "called_from_lib:libopencv_dnn.so\n"
           "called_from_lib:libopencv_imgproc.so\n"
           "called_from_lib:libopencv_objdetect.so\n"
           "called_from_lib:libtbb.so\n"
           "race:reference_host::media::Decoder::allocate\n"
           "mutex:nptl_deallocate_tsd\n";
}
