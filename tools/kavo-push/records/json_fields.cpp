#include "records/json_fields.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <variant>
#include <vector>

#include "cli_io.h"

namespace KavoTool {

namespace {

using Kavo::AAFwk::WantParams;
using Kavo::Media::PixelFormat;
using Kavo::Media::PixelMap;

// Names of the WantParams value types, in the order of the alternatives of WantParams::Value.
const char* const VALUE_TYPES[] = {"string", "bool", "int32", "int64", "double", "params"};

const struct {
    const char* name;
    PixelFormat format;
} PIXEL_FORMATS[] = {
    {"RGB_565", PixelFormat::RGB_565},
    {"RGBA_8888", PixelFormat::RGBA_8888},
    {"ALPHA_8", PixelFormat::ALPHA_8},
};

bool Expected(const std::string& path, const char* what, std::string& error)
{
    error = path + ": expected " + what;
    return false;
}

// The byte count of an image, or 0 when a size is not positive or the count is over the
// largest 32-bit value: the images PixelMap makes.
int64_t ImageByteCount(int32_t width, int32_t height, PixelFormat format)
{
    if (width <= 0 || height <= 0) {
        return 0;
    }
    // The row is checked first, as PixelMap does, so the product below stays within 62 bits.
    const int64_t rowBytes = int64_t{width} * Kavo::Media::BytesPerPixel(format);
    if (rowBytes > std::numeric_limits<int32_t>::max()) {
        return 0;
    }
    const int64_t count = rowBytes * height;
    return count <= std::numeric_limits<int32_t>::max() ? count : 0;
}

// An integer written as one: 3.0 is a real number, not an integer.
bool IsInteger(const Json::Value& json)
{
    return json.type() == Json::intValue || json.type() == Json::uintValue;
}

struct ValueToJson {
    Json::Value operator()(const std::string& v) const { return v; }
    Json::Value operator()(bool v) const { return v; }
    Json::Value operator()(int32_t v) const { return v; }
    Json::Value operator()(int64_t v) const { return Json::Int64{v}; }
    Json::Value operator()(double v) const { return v; }
    Json::Value operator()(const std::shared_ptr<WantParams>& v) const
    {
        Json::Value json;
        Put(json, *v);
        return json;
    }
};

// One entry of a WantParams object: {"type": NAME, "value": VALUE}.
bool GetWantValue(const Json::Value& json, const std::string& path, WantParams::Value& value, std::string& error)
{
    if (!json.isObject() || json.size() != 2 || !json["type"].isString() || !json.isMember("value")) {
        return Expected(path, "an object {\"type\": ..., \"value\": ...}", error);
    }
    const std::string type = json["type"].asString();
    const Json::Value& v = json["value"];
    const std::string valuePath = path + ".value";
    if (type == "string" && v.isString()) {
        value = v.asString();
    } else if (type == "bool" && v.isBool()) {
        value = v.asBool();
    } else if (type == "int32" && IsInteger(v) && v.isInt()) {
        value = v.asInt();
    } else if (type == "int64" && IsInteger(v) && v.isInt64()) {
        value = int64_t{v.asInt64()};
    } else if (type == "double" && v.isNumeric()) {
        value = v.asDouble();
    } else if (type == "params") {
        auto nested = std::make_shared<WantParams>();
        if (!Get(v, valuePath, *nested, error)) {
            return false;
        }
        value = nested;
    } else if (std::find(std::begin(VALUE_TYPES), std::end(VALUE_TYPES), type) == std::end(VALUE_TYPES)) {
        return Expected(path + ".type", "string, bool, int32, int64, double or params", error);
    } else {
        return Expected(valuePath, ("a value of type " + type).c_str(), error);
    }
    return true;
}

}  // namespace

void Put(Json::Value& json, std::string& value)
{
    json = value;
}

void Put(Json::Value& json, bool& value)
{
    json = value;
}

void Put(Json::Value& json, int32_t& value)
{
    json = value;
}

void Put(Json::Value& json, uint32_t& value)
{
    json = value;
}

void Put(Json::Value& json, int64_t& value)
{
    json = Json::Int64{value};
}

void Put(Json::Value& json, WantParams& value)
{
    json = Json::Value(Json::objectValue);
    for (const auto& [key, v] : value.GetParams()) {
        json[key]["type"] = VALUE_TYPES[v.index()];
        json[key]["value"] = std::visit(ValueToJson{}, v);
    }
}

void Put(Json::Value& json, PixelMap& value)
{
    json = Json::Value(Json::objectValue);
    json["width"] = value.GetWidth();
    json["height"] = value.GetHeight();
    json["format"] = static_cast<int32_t>(value.GetPixelFormat());
    for (const auto& known : PIXEL_FORMATS) {
        if (known.format == value.GetPixelFormat()) {
            json["format"] = known.name;
        }
    }
    const std::vector<uint8_t>& pixels = value.GetPixels();
    json["pixels"] = std::string(ToHex(std::string(pixels.begin(), pixels.end())));
}

bool Get(const Json::Value& json, const std::string& path, std::string& value, std::string& error)
{
    if (!json.isString()) {
        return Expected(path, "a string", error);
    }
    value = json.asString();
    return true;
}

bool Get(const Json::Value& json, const std::string& path, bool& value, std::string& error)
{
    if (!json.isBool()) {
        return Expected(path, "true or false", error);
    }
    value = json.asBool();
    return true;
}

bool Get(const Json::Value& json, const std::string& path, int32_t& value, std::string& error)
{
    if (!IsInteger(json) || !json.isInt()) {
        return Expected(path, "a 32-bit integer", error);
    }
    value = json.asInt();
    return true;
}

bool Get(const Json::Value& json, const std::string& path, uint32_t& value, std::string& error)
{
    if (!IsInteger(json) || !json.isUInt()) {
        return Expected(path, "an unsigned 32-bit integer", error);
    }
    value = json.asUInt();
    return true;
}

bool Get(const Json::Value& json, const std::string& path, int64_t& value, std::string& error)
{
    if (!IsInteger(json) || !json.isInt64()) {
        return Expected(path, "a 64-bit integer", error);
    }
    value = json.asInt64();
    return true;
}

bool Get(const Json::Value& json, const std::string& path, WantParams& value, std::string& error)
{
    if (!json.isObject()) {
        return Expected(path.empty() ? "the parameters" : path, "an object", error);
    }
    WantParams read;
    for (const std::string& key : json.getMemberNames()) {
        WantParams::Value v;
        if (!GetWantValue(json[key], path.empty() ? key : path + "." + key, v, error)) {
            return false;
        }
        read.SetParam(key, v);
    }
    value = read;
    return true;
}

bool Get(const Json::Value& json, const std::string& path, PixelMap& value, std::string& error)
{
    JsonIn in(json, path, error);
    int32_t width = 0;
    int32_t height = 0;
    std::string format;
    std::string pixels;
    if (!in.Open() || !in.Field("width", width) || !in.Field("height", height) || !in.Field("format", format) ||
        !in.Field("pixels", pixels) || !in.Close()) {
        return false;
    }
    const auto* known = std::find_if(std::begin(PIXEL_FORMATS), std::end(PIXEL_FORMATS),
                                     [&format](const auto& f) { return format == f.name; });
    if (known == std::end(PIXEL_FORMATS)) {
        return in.Fail("format", "expected RGB_565, RGBA_8888 or ALPHA_8");
    }
    const int64_t byteCount = ImageByteCount(width, height, known->format);
    if (byteCount == 0) {
        return in.Fail("width", "width and height must be positive and their image under 2 GiB");
    }
    // The pixels are read and counted before the image is made, so a short document cannot make
    // the tool set a large image aside.
    std::string bytes;
    std::string hexError;
    if (!ParseHex(pixels, bytes, hexError)) {
        return in.Fail("pixels", hexError);
    }
    if (static_cast<int64_t>(bytes.size()) != byteCount) {
        return in.Fail("pixels",
                       "expected " + std::to_string(byteCount) + " bytes, got " + std::to_string(bytes.size()));
    }
    PixelMap map(width, height, known->format);
    map.SetPixels(std::vector<uint8_t>(bytes.begin(), bytes.end()));
    value = map;
    return true;
}

bool JsonIn::Open()
{
    if (!json_.isObject()) {
        error_ = (path_.empty() ? std::string("the record") : path_) + ": expected an object";
        return false;
    }
    return true;
}

bool JsonIn::Close()
{
    for (const std::string& name : json_.getMemberNames()) {
        if (seen_.count(name) == 0) {
            return Fail(name.c_str(), "unknown field");
        }
    }
    return true;
}

bool JsonIn::Fail(const char* name, const std::string& message)
{
    error_ = Path(name) + ": " + message;
    return false;
}

}  // namespace KavoTool
