# Faults of paths and files.

add_host_mutant(path-of-null-is-a-word
  SOURCE services.cpp
  REPLACE [[text_(text == nullptr ? "" : text)]]
  BY [[text_(text == nullptr ? "(null)" : text)]]
  CAUGHT_BY paths.null-is-empty)

add_host_mutant(path-made-tidy
  SOURCE services.cpp
  REPLACE [[text_(text == nullptr ? "" : text) {}]]
  BY [[text_(std::filesystem::path(text == nullptr ? "" : text).lexically_normal().string()) {}]]
  CAUGHT_BY paths.keep-text paths.join-keeps-the-rest)

add_host_mutant(path-cut-short
  SOURCE services.cpp
  REPLACE [[text_(std::move(text)) {}]]
  BY [[text_(text.substr(0, 4096)) {}]]
  CAUGHT_BY paths.keep-strings)

add_host_mutant(base-keeps-its-slash
  SOURCE services.cpp
  REPLACE [[base.string().find_last_not_of('/') + 1;]]
  BY [[base.string().size();]]
  CAUGHT_BY paths.join-by-one-slash paths.join-by-one-of-many)

add_host_mutant(tail-loses-one-slash
  SOURCE services.cpp
  REPLACE [[std::min(tail.string().find_first_not_of('/'), tail.string().size());]]
  BY [[tail.string().front() == '/' ? std::size_t{1} : std::size_t{0};]]
  CAUGHT_BY paths.join-by-one-of-many)

add_host_mutant(join-of-empty-tail
  SOURCE services.cpp
  REPLACE [[    if (base.string().empty() || tail.string().empty()) return]]
  BY [[    if (base.string().empty()) return]]
  CAUGHT_BY paths.join-empty-sides)

add_host_mutant(join-makes-tidy
  SOURCE services.cpp
  REPLACE [[    return Path(base.string().substr(0, end) + "/" + tail.string().substr(begin));]]
  BY [[    const std::string all = base.string().substr(0, end) + "/" + tail.string().substr(begin);
    return Path(std::filesystem::path(all).lexically_normal().string());]]
  CAUGHT_BY paths.join-keeps-the-rest)

add_host_mutant(directories-do-not-exist
  SOURCE services.cpp
  REPLACE [[    return std::filesystem::exists(path.string(), error);]]
  BY [[    return std::filesystem::is_regular_file(path.string(), error);]]
  CAUGHT_BY paths.exist paths.work-on-threads)

add_host_mutant(exists-throws
  SOURCE services.cpp
  REPLACE [[    return std::filesystem::exists(path.string(), error);]]
  BY [[    return std::filesystem::exists(path.string());]]
  CAUGHT_BY paths.answer-the-impossible)

add_host_mutant(creates-one-directory
  SOURCE services.cpp
  REPLACE [[    std::filesystem::create_directories(path.string(), error);]]
  BY [[    std::filesystem::create_directory(path.string(), error);]]
  CAUGHT_BY paths.create-nested paths.work-on-threads)

add_host_mutant(created-is-what-exists
  SOURCE services.cpp
  REPLACE [[    return std::filesystem::is_directory(path.string(), error);  // whoever made it]]
  BY [[    return PathUtil::exists(path);]]
  CAUGHT_BY paths.create-on-files)

add_host_mutant(removes-nothing
  SOURCE services.cpp
  REPLACE [[std::filesystem::remove(path.string(), error);]]
  BY [[std::filesystem::exists(path.string(), error);]]
  CAUGHT_BY paths.remove-files)

add_host_mutant(removes-directories
  SOURCE services.cpp
  REPLACE [[    return !std::filesystem::is_directory(status) &&]]
  BY [[    return std::filesystem::exists(status) &&]]
  CAUGHT_BY paths.remove-no-directories)

add_host_mutant(splits-at-commas-only
  SOURCE services.cpp
  REPLACE [[        if (letter == separator)]]
  BY [[        if (letter == ',' && separator == ',')]]
  CAUGHT_BY paths.split)

add_host_mutant(split-drops-empty-parts
  SOURCE services.cpp
  REPLACE [[            parts.emplace_back();]]
  BY [[            parts.resize(parts.back().empty() ? parts.size() : parts.size() + 1);]]
  CAUGHT_BY paths.split-keeps-empty-parts)

add_host_mutant(length-of-null-unguarded
  SOURCE services.cpp
  REPLACE [[    return text == nullptr ? 0 : std::strlen(text);]]
  BY [[    return std::strlen(text);]]
  CAUGHT_BY paths.lengths)
