#include "validator/host/HostLibrary.h"

#include <cstddef>
#include <stdexcept>

#include "validator/host/exports.h"
#include "validator/host/footage.h"

namespace validator {
namespace {

const dynamic_library::DynamicLibrary& loaded(const Occasion& occasion) {
    using dynamic_library::DynamicLibrary;
    try {
        // Never deleted: see the class.
        return *new DynamicLibrary(occasion.library, dynamic_library::Symbols::global);
    } catch (const std::runtime_error& error) {
        skip(error.what());
    }
}

template <typename List, typename Element>
Held<List> filled(List* list, const std::vector<Element>& elements, const char* factory) {
    expectObject(std::string(factory) + "()", list);
    Held<List> held(list);
    for (const Element& element : elements)
        expectEqual("append()", list->append(element), KOR::statusOk);
    return held;
}

/// UTF-8, whatever the system's own paths are.
std::string utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

}  // namespace

HostLibrary::HostLibrary(const Occasion& occasion)
    : occasion_(occasion), library_(loaded(occasion)) {}

Held<KOR::IKORIntList> HostLibrary::intList(const std::vector<std::int32_t>& elements) const {
    const char* const factory = exports::lists[0];
    return filled(service<KOR::IKORIntList*()>(factory)(), elements, factory);
}

Held<KOR::IKORLonglongList> HostLibrary::longlongList(
    const std::vector<std::int64_t>& elements) const {
    const char* const factory = exports::lists[1];
    return filled(service<KOR::IKORLonglongList*()>(factory)(), elements, factory);
}

Held<KOR::IKORVoidPtrList> HostLibrary::borrowingList(const std::vector<void*>& elements) const {
    const char* const factory = exports::lists[2];
    return filled(service<KOR::IKORVoidPtrList*()>(factory)(), elements, factory);
}

Held<KOR::IKORVoidPtrList> HostLibrary::owningList(const std::vector<void*>& elements) const {
    const char* const factory = exports::lists[3];
    return filled(service<KOR::IKORVoidPtrList*()>(factory)(), elements, factory);
}

KOR::Path HostLibrary::path(const char* text) const {
    // A constructor takes the place of the object, and then its arguments.
    alignas(KOR::Path) std::byte place[sizeof(KOR::Path)];
    service<void(void*, const char*)>(exports::pathOfChars)(place, text);
    KOR::Path& made = *reinterpret_cast<KOR::Path*>(place);
    KOR::Path result = made;
    made.~Path();
    return result;
}

Held<KOR::IKorBaseTask> HostLibrary::task(const std::vector<std::int32_t>& types) const {
    const auto make = service<KOR::IKorBaseTask*(KOR::IKORIntList*)>(exports::task);
    Held<KOR::IKorBaseTask> task(make(intList(types).get()));
    expectObject("createMediaAnalysisTask() of types " + shown(types), task.get());
    return task;
}

Held<KOR::IDmBaseObj> HostLibrary::materialOf(const std::filesystem::path& file,
                                              const std::filesystem::path& cacheDirectory) const {
    if (exported(exports::material) == nullptr) {
        skip("the library exports no createValidationMaterial, so that there is no material");
    }
    const auto make = service<KOR::IDmBaseObj*(const char*, const char*)>(exports::material);
    return Held<KOR::IDmBaseObj>(make(utf8(file).c_str(), utf8(cacheDirectory).c_str()));
}

Material HostLibrary::material(const std::filesystem::path& file) const {
    Material material{materialOf(file, cacheDirectory())};
    expectObject("createValidationMaterial() of " + utf8(file.filename()), material.object.get());
    const auto side = [&](const char* name) {
        void* const found = material.object->queryInterface(name);
        expectObject(std::string("queryInterface() of ") + name, found);
        return found;
    };
    material.media = static_cast<KOR::IDmBaseMedia*>(side("IDmBaseMedia"));
    material.side = static_cast<KOR::IDmSourceMedia*>(side("IDmSourceMedia"));
    material.source = material.side->getSource();
    expectObject("getSource()", material.source);
    return material;
}

Material HostLibrary::video() const {
    return material(videoFile());
}

Material HostLibrary::photo() const {
    return material(photoFile());
}

std::filesystem::path HostLibrary::videoFile() const {
    return hasOurVideo() ? footage::video(occasion_.scratch)
                         : std::filesystem::path(occasion_.video);
}

std::filesystem::path HostLibrary::photoFile() const {
    return hasOurPhoto() ? footage::twoTonePhoto(occasion_.scratch)
                         : std::filesystem::path(occasion_.photo);
}

std::filesystem::path HostLibrary::cacheDirectory() const {
    const std::filesystem::path directory = occasion_.scratch / "cache";
    std::filesystem::create_directories(directory);
    return directory;
}

}  // namespace validator
