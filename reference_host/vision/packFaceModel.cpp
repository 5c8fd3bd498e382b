#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <dlib/image_processing/frontal_face_detector.h>

/// Writes dlib's model of faces as a list of bytes, to be compiled in. dlib itself has it so
/// tightly packed that unpacking takes a sixth of a second, a hundred times as long as reading
/// these bytes.
///
///   packFaceModel FILE
int main(int argc, char** argv) {
    if (argc != 2) return EXIT_FAILURE;
    std::ostringstream bytes;
    dlib::serialize(dlib::get_frontal_face_detector(), bytes);
    std::ofstream file(argv[1]);
    int column = 0;
    for (const char byte : bytes.str()) {
        file << static_cast<int>(static_cast<unsigned char>(byte)) << ',';
        if (++column % 24 == 0) file << '\n';
    }
    return file.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
