#include "tests/vision/OnnxModel.h"

#include <cstring>

namespace reference_host::vision {
namespace {

std::string varint(std::uint64_t value) {
    std::string bytes;
    for (; value >= 0x80; value >>= 7)
        bytes += static_cast<char>(value | 0x80);
    return bytes + static_cast<char>(value);
}

std::string number(std::uint64_t field, std::uint64_t value) {
    return varint(field << 3) + varint(value);
}

std::string text(std::uint64_t field, const std::string& value) {
    return varint(field << 3 | 2) + varint(value.size()) + value;
}

// The numbers of the fields are those of onnx.proto.

std::string node(const std::string& kind, const std::vector<std::string>& inputs,
                 const std::string& output, const std::string& attributes = {}) {
    std::string bytes;
    for (const std::string& input : inputs)
        bytes += text(1, input);
    return text(1, bytes + text(2, output) + text(3, output + "_by") + text(4, kind) + attributes);
}

std::string attribute(const std::string& name, std::uint64_t value) {
    constexpr std::uint64_t integer = 2;
    return text(5, text(1, name) + number(3, value) + number(20, integer));
}

std::string tensor(const std::string& name, std::uint64_t rows, const std::vector<float>& values) {
    constexpr std::uint64_t floats = 1;
    std::string raw(values.size() * sizeof(float), '\0');
    std::memcpy(raw.data(), values.data(), raw.size());
    return text(5, number(1, rows) + number(1, values.size() / rows) + number(2, floats) +
                       text(8, name) + text(9, raw));
}

std::string valueOf(const std::string& name, const std::vector<std::uint64_t>& sides) {
    constexpr std::uint64_t floats = 1;
    std::string shape;
    for (const std::uint64_t side : sides)
        shape += text(1, number(1, side));
    return text(1, name) + text(2, text(1, number(1, floats) + text(2, shape)));
}

}  // namespace

OnnxModel& OnnxModel::output(const std::string& name, const std::vector<float>& values) {
    constexpr std::uint64_t channels = 3;
    // The means of the picture's colours times nothing, plus the values.
    nodes_ +=
        node("Gemm", {"means", name + "_factors", name + "_values"}, name, attribute("transB", 1));
    weights_ +=
        tensor(name + "_factors", values.size(), std::vector<float>(channels * values.size()));
    weights_ += tensor(name + "_values", 1, values);
    outputs_ += text(12, valueOf(name, {1, values.size()}));
    return *this;
}

std::string OnnxModel::bytes() const {
    const std::string graph = node("GlobalAveragePool", {"picture"}, "pooled") +
                              node("Flatten", {"pooled"}, "means") + nodes_ + text(2, "fixed") +
                              weights_ + text(11, valueOf("picture", {1, 3, 640, 640})) + outputs_;
    constexpr std::uint64_t format = 7;
    constexpr std::uint64_t operators = 11;
    return number(1, format) + text(7, graph) + text(8, number(2, operators));
}

}  // namespace reference_host::vision
