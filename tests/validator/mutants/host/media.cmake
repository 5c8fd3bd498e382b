# Faults of materials and of what their sources say.

add_host_mutant(material-gives-another-interface
  SOURCE materials.cpp
  REPLACE [[return static_cast<KOR::IDmBaseMedia*>(this);]]
  BY [[return static_cast<KOR::IDmBaseObj*>(this);]]
  CAUGHT_BY media.gives-own-interfaces)

add_host_mutant(everything-is-a-photo
  SOURCE materials.cpp
  REPLACE [[return clip_->isVideo ? KOR::mediaTypeVideo : KOR::mediaTypePhoto;]]
  BY [[return KOR::mediaTypePhoto;]]
  CAUGHT_BY media.video-is-time-based)

add_host_mutant(everything-is-a-video
  SOURCE materials.cpp
  REPLACE [[return clip_->isVideo ? KOR::mediaTypeVideo : KOR::mediaTypePhoto;]]
  BY [[return KOR::mediaTypeVideo;]]
  CAUGHT_BY media.photo-is-still)

add_host_mutant(duration-in-milliseconds
  SOURCE materials.cpp
  REPLACE [[return clip_->duration();]]
  BY [[return clip_->duration() / 10000;]]
  CAUGHT_BY media.video-has-duration media.photo-lasts-one-tick)

add_host_mutant(material-without-name
  SOURCE materials.cpp
  REPLACE [[return clip_->file.c_str();]]
  BY [[return "";]]
  CAUGHT_BY media.has-name)

add_host_mutant(source-adds-a-reference
  SOURCE materials.cpp
  REPLACE [[return clip_.get();]]
  BY [[return addRef(), clip_.get();]]
  CAUGHT_BY media.has-source hosting.leaves-nothing destruction.of-short-lives)

add_host_mutant(source-type-counts-up
  SOURCE materials.cpp
  REPLACE [[return 0; }  // its]]
  BY [[static std::atomic<std::uint32_t> calls; return ++calls; }  // its]]
  CAUGHT_BY media.repeats-answers media.answers-on-threads)

add_host_mutant(materials-of-one-thread
  SOURCE materials.cpp
  REPLACE [[    if (file == nullptr || cacheDirectory == nullptr) return nullptr;]]
  BY [[    static thread_local int own;
    static const int* const first = &own;
    if (&own != first) return nullptr;
    if (file == nullptr || cacheDirectory == nullptr) return nullptr;]]
  CAUGHT_BY media.are-made-on-threads)

add_host_mutant(other-files-throw
  SOURCE materials.cpp
  REPLACE [[} catch (const std::exception&) {
    return nullptr;]]
  BY [[} catch (const std::exception&) {
    throw;]]
  CAUGHT_BY media.of-no-such-file)

add_host_mutant(null-directory-is-none
  SOURCE materials.cpp
  REPLACE [[    if (file == nullptr || cacheDirectory == nullptr) return nullptr;]]
  BY [[    if (file == nullptr) return nullptr;
    if (cacheDirectory == nullptr) cacheDirectory = "";]]
  CAUGHT_BY media.of-null)

add_host_mutant(media-goes-with-its-material
  SOURCE materials.cpp
  REPLACE [[private:
    const std::shared_ptr<Clip> clip_;]]
  BY [[private:
    ~Material() override { clip_->count = 0; }
    const std::shared_ptr<Clip> clip_;]]
  CAUGHT_BY threads.hold-the-source threads.hold-the-source-before-start)

add_host_mutant(keys-by-their-begin
  SOURCE Clip.h
  REPLACE [[(!isCache && name != KOR::mediaInfoKey::media_length) ||]]
  BY [[!name.starts_with("media") ||]]
  CAUGHT_BY info.unknown-keys)

add_host_mutant(value-not-looked-at
  SOURCE Clip.h
  REPLACE [[        if (value == nullptr || (]]
  BY [[        if ((]]
  CAUGHT_BY info.null)

add_host_mutant(texts-may-be-null
  SOURCE Clip.h
  REPLACE [[cacheDirectory_.c_str() : "";]]
  BY [[cacheDirectory_.c_str() : nullptr;]]
  CAUGHT_BY info.texts-are-never-null)

add_host_mutant(photo-with-a-length
  SOURCE Clip.h
  REPLACE [[        value->asInt64 = 0;]]
  BY [[        value->asInt64 = 50000000;]]
  CAUGHT_BY info.photo-length)

add_host_mutant(value-loses-its-last-letter
  SOURCE Clip.h
  REPLACE [[text.copy(value->asText, text.size())]]
  BY [[text.copy(value->asText, text.size() - 1)]]
  CAUGHT_BY info.cache-as-value)

add_host_mutant(cache-elsewhere
  SOURCE Clip.h
  REPLACE [[cacheDirectory_ = cacheRoot + "/minimal-1-"]]
  BY [[cacheDirectory_ = cacheRoot + "-of-minimal-1-"]]
  CAUGHT_BY info.cache-lies-below)

add_host_mutant(cache-without-a-root
  SOURCE Clip.h
  REPLACE [[        if (!cacheRoot.empty())
]]
  BY ""
  CAUGHT_BY info.cache-is-empty-without-a-directory)

add_host_mutant(one-cache-for-all
  SOURCE Clip.h
  REPLACE [["/minimal-1-" + std::to_string(name) + "-" + stamp_;]]
  BY [["/minimal-1-" + std::to_string(name * 0);]]
  CAUGHT_BY info.caches-differ)

add_host_mutant(cache-made-anew
  SOURCE Clip.h
  REPLACE [[            cacheDirectory_ = cacheRoot]]
  BY [[            cacheDirectory_ =
                cacheRoot + "/" + [] { static int n; return std::to_string(++n); }()]]
  WARNED_BY info.cache-is-found-again)

add_host_mutant(texts-share-their-place
  SOURCE Clip.h
  REPLACE [[        return isCache && !isTainted ? cacheDirectory_.c_str() : "";]]
  BY [[        static thread_local std::string text;
        text = isCache && !isTainted ? cacheDirectory_ : "";
        return text.c_str();]]
  CAUGHT_BY info.texts-stay-valid)
