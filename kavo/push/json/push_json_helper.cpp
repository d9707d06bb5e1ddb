#include "kavo/push/json/push_json_helper.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <fstream>
#include <memory>
#include <sstream>

#include "kavo/push/common/push_log.h"
#include "kavo/push/json/real_path.h"

namespace Kavo::Push {

namespace {

// The log lines of one reader of a file member; the result texts are shared by all readers.
struct MemberTexts {
    const char* rootFailed;
    const char* notObject;
    const char* noKey;
};

PushBaseRsp Fail(const char* logLine, const char* desc)
{
    PUSH_LOGE("%{public}s", logLine);
    return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string(desc));
}

constexpr size_t MAX_JSON_FILE_BYTES = 64 * 1024 * 1024;
constexpr char TOO_LARGE[] = "file is larger than the limit of 67108864 bytes (64 MiB)";

// A whole file's text, or why it could not be had: `opened` false when the path names nothing
// readable or something other than a regular file (a FIFO or a device would block or never
// end); otherwise `error` is set when reading failed or the file is over the size limit.
struct FileText {
    bool opened = false;
    std::string text;
    std::string error;
};

// Appends the rest of `fd` to `out`; false with `error` set on a read error or past the limit.
bool ReadAll(int fd, std::string& out, std::string& error)
{
    char buffer[65536];
    for (;;) {
        ssize_t n = read(fd, buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            error = std::strerror(errno);
            return false;
        }
        if (n == 0) {
            return true;
        }
        if (out.size() + static_cast<size_t>(n) > MAX_JSON_FILE_BYTES) {
            error = TOO_LARGE;
            return false;
        }
        out.append(buffer, static_cast<size_t>(n));
    }
}

FileText ReadRegularFile(const std::string& path)
{
    FileText file;
    // O_NONBLOCK: opening a FIFO with no writer returns at once instead of waiting for one.
    int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return file;
    }
    struct stat info {};
    file.opened = fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    if (file.opened && static_cast<unsigned long long>(info.st_size) > MAX_JSON_FILE_BYTES) {
        file.error = TOO_LARGE;
    } else if (file.opened) {
        ReadAll(fd, file.text, file.error);
    }
    close(fd);
    return file;
}

// GetJsonRootFromPath without its exception handler: a parse that throws (nesting deeper than
// the parser allows) reaches the caller's own handler.
PushBaseRsp ReadJsonRoot(const std::string& path, const bool& isConfigFile, Json::Value& root)
{
    std::string realPath;
    PushBaseRsp rsp = GetRealPath(path, isConfigFile, realPath);
    if (!rsp.Succeed()) {
        PUSH_LOGE("GetJsonRootFromPath: GetRealPath Failed");
        return rsp;
    }
    FileText file = ReadRegularFile(realPath);
    if (!file.opened) {
        return Fail("GetJsonRootFromPath: Open File Error", "Open file error.");
    }
    Json::Value parsed;
    std::string errs = file.error;
    if (errs.empty()) {
        std::istringstream stream(std::move(file.text));
        Json::CharReaderBuilder builder;
        if (Json::parseFromStream(builder, stream, &parsed, &errs)) {
            root.swap(parsed);
            return rsp;
        }
    }
    PUSH_LOGE("GetJsonRootFromPath: Read File Failed %{public}s.", errs.c_str());
    return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Read file failed %s.", errs.c_str());
}

// Reads the file's object and takes its member `key` out into `member`.
PushBaseRsp TakeFileMember(const std::string& path, const bool& isConfigFile, const std::string& key,
                           const MemberTexts& texts, Json::Value& member)
{
    Json::Value root;
    PushBaseRsp rsp = ReadJsonRoot(path, isConfigFile, root);
    if (!rsp.Succeed()) {
        PUSH_LOGE("%{public}s", texts.rootFailed);
        return rsp;
    }
    if (!root.isObject()) {
        return Fail(texts.notObject, "Json is illegal.");
    }
    if (!root.isMember(key)) {
        return Fail(texts.noKey, "Json has no this key.");
    }
    member.swap(root[key]);
    return rsp;
}

// Both member readers turn any standard exception into one result with the same texts.
template <typename Read>
PushBaseRsp GuardMemberRead(Read read)
{
    try {
        return read();
    } catch (const std::exception& e) {
        PUSH_LOGE("Get string from json error: %{public}s", e.what());
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Get string from json error: %s.", e.what());
    }
}

PushBaseRsp WriteFailed(const char* what)
{
    PUSH_LOGE("SetStringToJson: Write to File Error: %{public}s", what);
    return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Write to file error: %s.", what);
}

// Writes the whole root; a stream that fails (full disk, file size limit) throws like the
// writer itself would, so every failure is reported the same way.
PushBaseRsp WriteRoot(const Json::Value& root, const std::string& realPath)
{
    Json::StreamWriterBuilder builder;
    std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
    std::ofstream file(realPath, std::ios::out);
    if (!file.is_open()) {
        return Fail("SetStringToJson: Open File Error", "Open file error.");
    }
    try {
        file.exceptions(std::ios::failbit | std::ios::badbit);
        writer->write(root, &file);
        file.close();
    } catch (const std::exception& e) {
        file.exceptions(std::ios::goodbit);
        file.close();
        return WriteFailed(e.what());
    }
    return PushBaseRsp();
}

}  // namespace

PushBaseRsp PushJsonHelper::GetJsonRootFromPath(const std::string& path, const bool& isConfigFile, Json::Value& root)
{
    try {
        return ReadJsonRoot(path, isConfigFile, root);
    } catch (const std::exception& e) {
        // Nesting deeper than the parser allows: a read failure too.
        PUSH_LOGE("GetJsonRootFromPath: Read File Failed %{public}s.", e.what());
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Read file failed %s.", e.what());
    }
}

PushBaseRsp PushJsonHelper::GetStringFromJson(const std::string& path, const bool& isConfigFile, const std::string& key,
                                              std::string& value)
{
    return GuardMemberRead([&]() {
        static constexpr MemberTexts texts = {"GetStringFromJson: GetJsonRootFromPath Faild",
                                              "GetStringFromJson: Json is Illegal",
                                              "GetStringFromJson: Json Has No This Key"};
        Json::Value member;
        PushBaseRsp rsp = TakeFileMember(path, isConfigFile, key, texts, member);
        if (!rsp.Succeed()) {
            return rsp;
        }
        if (member.type() != Json::stringValue) {
            return Fail("GetStringFromJson: Json Value Type is Not String", "Json value type is not string.");
        }
        value = member.asString();
        return rsp;
    });
}

PushBaseRsp PushJsonHelper::GetArrayFromJson(const std::string& path, const bool& isConfigFile, const std::string& key,
                                             std::set<std::string>& values)
{
    return GuardMemberRead([&]() {
        static constexpr MemberTexts texts = {"GetArrayFromJson: GetJsonRootFromPath Failed",
                                              "GetArrayFromJson: Json is Illegal",
                                              "GetArrayFromJson: Json Has No This Key"};
        Json::Value member;
        PushBaseRsp rsp = TakeFileMember(path, isConfigFile, key, texts, member);
        if (!rsp.Succeed()) {
            return rsp;
        }
        if (member.type() != Json::arrayValue) {
            return Fail("GetArrayFromJson: Json Value Type is Not Array", "Json value type is not array.");
        }
        for (const Json::Value& item : member) {
            if (item.type() != Json::stringValue) {
                // No log line here: the result names the key.
                return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Item in %s is not string.", key.c_str());
            }
            values.insert(item.asString());
        }
        return rsp;
    });
}

PushBaseRsp PushJsonHelper::SetStringToJson(const std::string& path, const bool& isConfigFile, const std::string& key,
                                            const std::string& value)
{
    Json::Value root;
    PushBaseRsp rsp = GetJsonRootFromPath(path, isConfigFile, root);
    if (!rsp.Succeed()) {
        PUSH_LOGW("Get json from path error: %{public}s", rsp.GetInfo().c_str());
        return rsp;
    }
    try {
        // Replaces the member whatever it held; a root that is no object refuses, and the
        // file is left as it was.
        root[key] = value;
    } catch (const std::exception& e) {
        return WriteFailed(e.what());
    }
    std::string realPath;
    rsp = GetRealPath(path, isConfigFile, realPath);
    if (!rsp.Succeed()) {
        PUSH_LOGE("SetStringToJson: GetRealPath Failed");
        return rsp;
    }
    return WriteRoot(root, realPath);
}

}  // namespace Kavo::Push
