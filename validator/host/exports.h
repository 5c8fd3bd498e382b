#pragma once

#include <array>

/// The services of a host, by the names under which a library exports them: the mangled ones are
/// those of the Itanium C++ ABI, which both systems' compilers follow.
namespace validator::exports {

inline constexpr std::array lists = {"createKORIntList", "createKORLonglongList",
                                     "createKORVoidPtrList", "createKORAutoVoidPtrList"};

inline constexpr const char* width = "_ZN3KOR5widthERKNS_7KorRectE";
inline constexpr const char* height = "_ZN3KOR6heightERKNS_7KorRectE";
inline constexpr const char* centerPoint = "_ZN3KOR11centerPointERKNS_7KorRectE";
inline constexpr const char* pointInRect = "_ZN3KOR11pointInRectERKNS_8KorPointERKNS_7KorRectE";
inline constexpr std::array geometry = {width, height, centerPoint, pointInRect};

inline constexpr const char* pathOfChars = "_ZN3KOR4PathC1EPKc";
inline constexpr const char* pathOfString =
    "_ZN3KOR4PathC1ENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE";
inline constexpr const char* pathString = "_ZNK3KOR4Path6stringB5cxx11Ev";
inline constexpr const char* exists = "_ZN3KOR8PathUtil6existsERKNS_4PathE";
inline constexpr const char* join = "_ZN3KOR8PathUtil4joinERKNS_4PathES3_";
inline constexpr const char* create = "_ZN3KOR7DirUtil6createERKNS_4PathE";
inline constexpr const char* remove = "_ZN3KOR8FileUtil6removeERKNS_4PathE";
inline constexpr const char* split =
    "_ZN3KOR10StringUtil5splitERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEc";
inline constexpr const char* length = "kor_strlen";
inline constexpr std::array files = {pathOfChars, pathOfString, pathString, exists, join,
                                     create,      remove,       split,      length};

inline constexpr const char* logger = "loggerWrapper";
inline constexpr const char* task = "createMediaAnalysisTask";

/// Optional; see host/validation.h.
inline constexpr const char* material = "createValidationMaterial";

}  // namespace validator::exports
