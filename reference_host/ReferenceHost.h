#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "host/IDmBaseObj.h"

/// What a program needs of the reference host beyond the services in host/: files become materials
/// here. All functions may be called on any thread.
namespace reference_host {

/// What importMaterial gives back.
struct ImportedMaterial {
    /// The material with one reference, which the caller gives back; null when `error` is set.
    KOR::IDmBaseObj* object = nullptr;
    /// Why the file is no material, in one line without its name; empty on success.
    std::string error;
    /// 32 hex digits that name the file's content: equal for files of equal size, time of
    /// modification and sampled content, whatever their names and places; empty when `error` is
    /// set. It changes with the face model in use, too: files of equal keys have equal results.
    std::string contentKey;
};

/// Opens `file` as a material: a video when it holds more than one picture, a photo when exactly
/// one. Reads the whole file's packets once, without decoding them all; only where they carry no
/// timestamps (raw streams, some old containers) everything is decoded to measure the duration.
///
/// The name is taken literally, and only a regular file is opened. What is found out about the file
/// is kept below `cacheRoot`, in a directory named by the content key, which the component is told
/// as the material's media cache. Where that is there already, made by the same versions of the
/// libraries that read files, only a megabyte of samples is read of the file for its key: no packet
/// and no picture. A cache that cannot be written or read is as good as none; with an empty
/// `cacheRoot` nothing is kept, and nothing read but the file.
///
/// Once `stop` is requested, by any thread, reading gives up soon and the error is "interrupted".
ImportedMaterial importMaterial(const std::filesystem::path& file,
                                const std::filesystem::path& cacheRoot, std::stop_token stop = {});

/// What is kept of one material below the root of a cache.
struct CachedMaterial {
    /// The path, made absolute, under which it was last imported, UTF-8 unless the name is not;
    /// empty where unknown.
    std::string file;
    /// What the files that are kept of it take together.
    std::uintmax_t sizeBytes = 0;
    /// The component's `analysis/result.json` is among them.
    bool hasResult = false;
};

/// What listCache has found.
struct CacheListing {
    /// In ascending order of `file`.
    std::vector<CachedMaterial> materials;
    /// What could not be looked at, and why: one line each.
    std::vector<std::string> failures;
};

/// Returns what is kept below `cacheRoot`; nothing where there is no such directory. What neither
/// this host nor the component by it has made is passed over. Throws std::runtime_error, which
/// names the root, where it cannot be read.
CacheListing listCache(const std::filesystem::path& cacheRoot);

/// What clearCache has done.
struct ClearedCache {
    /// Of how many materials everything that was kept is deleted.
    std::size_t materials = 0;
    /// What the deleted files took together.
    std::uintmax_t sizeBytes = 0;
    /// One line for each thing that could not be deleted: its path and why.
    std::vector<std::string> failures;
};

/// Deletes what this host, and the component by it, have made below `cacheRoot`, and nothing else:
/// in directories named by a content key the files of known names, then these directories where
/// that has emptied them. The root stays. Symbolic links are neither followed nor deleted. Nothing
/// happens where there is no such directory; throws as listCache() where it cannot be read.
ClearedCache clearCache(const std::filesystem::path& cacheRoot);

/// What has happened to a material so far.
struct MaterialReport {
    /// An analysis task has been started on it.
    bool analysed = false;
    /// The reason of the first task that failed on it, in one line; empty when none did.
    std::string failure;
    /// What was wrong with the file although it could be used, one line each.
    std::vector<std::string> warnings;
};

/// Returns the report of a material that importMaterial made.
MaterialReport reportOf(KOR::IDmBaseObj& material);

/// Returns how many faces the last face detection on `material`, which importMaterial made, found
/// in the picture at `positionTicks`; none where it did not look there, or could not. For a video
/// that has not been analysed since it was imported, this is the detection of the run whose results
/// are in its cache; none where its counts were not kept.
std::optional<std::int32_t> facesAt(KOR::IDmBaseObj& material, std::int64_t positionTicks);

/// Has faces found by `model`, a model for OpenCV's FaceDetectorYN (ONNX), from the next analysis
/// on, instead of by the detector that is built in. Files are to be imported after that: what one
/// model has found is kept apart from what another has. Throws std::runtime_error, which names the
/// file, where it cannot be read or is no such model.
void useFaceModel(const std::filesystem::path& model);

/// Stops all tasks and waits until nothing of them runs any more. For the end of a program: a run
/// that was stopped or given up may still be busy with a picture, by libraries that do not outlive
/// `main`. No task may be started on another thread meanwhile.
void endAllRuns();

/// Sends the host's log (number 0), FFmpeg's messages included, to the end of `file`. Until this is
/// called there is no log, and FFmpeg's messages are dropped. Throws std::runtime_error, which
/// names the file, when it cannot be written; no directory is created for it.
void openLog(const std::filesystem::path& file);

}  // namespace reference_host
