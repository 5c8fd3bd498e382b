# What MaterialAnalysis.dll tells the system's loader. Run as:
#   cmake -D OBJDUMP=... -D LIBRARY=... -D CLAIM=... -P library_file_windows.cmake
execute_process(COMMAND ${OBJDUMP} --private-headers ${LIBRARY}
  OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "[][;]" "|" headers "${headers}")  # what lists are made of

# Gives the paragraph that begins behind `title`.
function(paragraph title result)
  string(FIND "${headers}" "${title}" begin)
  if(begin EQUAL -1)
    message(FATAL_ERROR "no ${title}")
  endif()
  string(SUBSTRING "${headers}" ${begin} -1 text)
  string(FIND "${text}" "\n\n" end)
  string(SUBSTRING "${text}" 0 ${end} text)
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# Fails unless what `pattern` finds behind `mark` in `text` is what is named behind, in any order.
function(expect_names text mark pattern)
  string(REGEX MATCHALL "${mark}${pattern}" found "${text}")
  list(TRANSFORM found REPLACE "^${mark}" "")
  list(SORT found)
  set(expected ${ARGN})
  list(SORT expected)
  if(NOT found STREQUAL expected)
    message(FATAL_ERROR "found:    ${found}\nexpected: ${expected}")
  endif()
endfunction()

if(CLAIM STREQUAL "ExportsTheFactoryAndTheKeysOnly")
  paragraph("|Ordinal/Name Pointer| Table" exports)
  expect_names("${exports}" "[0-9]+\\| " "[A-Za-z_0-9]+"
    createMaterialAnalysis
    _ZN3KOR16analysisParamKey17minScenceDurationE
    _ZN3KOR16analysisParamKey24scenceDetectionThresholdE
    _ZN3KOR16analysisParamKey23minNeedAnalysisDuartionE
    _ZN3KOR16analysisParamKey17photoNeedAnalysisE)
elseif(CLAIM STREQUAL "HasTheNumberOfItsBinaryContract")
  expect_names("${headers}" "\nMajorImageVersion\t" "[0-9]+" 1)
elseif(CLAIM STREQUAL "TakesTheHostsServicesFromItsLibrary")
  paragraph("DLL Name: MaterialAnalysisHost.dll" imports)
  expect_names("${imports}" "\t[0-9a-f]+\t +[0-9]+ +" "[A-Za-z_0-9]+"
    _ZN3KOR4PathC1EPKc
    _ZNK3KOR4Path6stringB5cxx11Ev
    _ZN3KOR8PathUtil4joinERKNS_4PathES3_
    _ZN3KOR8PathUtil6existsERKNS_4PathE
    _ZN3KOR7DirUtil6createERKNS_4PathE
    _ZN3KOR8FileUtil6removeERKNS_4PathE
    _ZN3KOR10StringUtil5splitERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEc
    _ZN3KOR5widthERKNS_7KorRectE
    _ZN3KOR6heightERKNS_7KorRectE
    _ZN3KOR11centerPointERKNS_7KorRectE
    _ZN3KOR11pointInRectERKNS_8KorPointERKNS_7KorRectE
    createKORAutoVoidPtrList
    createKORIntList
    createKORLonglongList
    createKORVoidPtrList
    createMediaAnalysisTask
    kor_strlen
    loggerWrapper)
elseif(CLAIM STREQUAL "NeedsTheHostAndTheRuntimeOnly")
  # The C++ library is a library, too: host and component hand each other its strings and errors.
  expect_names("${headers}" "DLL Name: " "[^\n]+"
    KERNEL32.dll msvcrt.dll libgcc_s_seh-1.dll libstdc++-6.dll MaterialAnalysisHost.dll)
else()
  message(FATAL_ERROR "unknown claim: ${CLAIM}")
endif()
