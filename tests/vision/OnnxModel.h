#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace reference_host::vision {

/// Writes the bytes of an ONNX model that says the same whatever picture it is shown: each of its
/// outputs is a fixed row of values.
class OnnxModel {
public:
    /// Adds an output by its name.
    OnnxModel& output(const std::string& name, const std::vector<float>& values);

    /// Returns the file's bytes: a protocol buffer.
    std::string bytes() const;

private:
    std::string nodes_;
    std::string weights_;
    std::string outputs_;
};

}  // namespace reference_host::vision
