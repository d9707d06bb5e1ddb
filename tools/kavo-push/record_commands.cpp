// `kavo-push types`, `decode` and `encode`: the library's records between parcel bytes and JSON.
#include <iostream>

#include "cli_io.h"
#include "command.h"
#include "records/record_json.h"

namespace KavoTool {

namespace {

int RunTypes(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {}, a, error)) {
        return UsageError("types", error);
    }
    if (!a.positional.empty()) {
        return UsageError("types", "expected no arguments");
    }
    for (const RecordType& type : RecordTypes()) {
        std::cout << type.name << "\t" << type.description << "\n";
    }
    return EXIT_OK;
}

// Parses "TYPE [FILE|-] [--hex]" for decode and encode.
int ParseRecordArguments(const std::string& command, const std::vector<std::string>& args, Arguments& a,
                         const RecordType*& type)
{
    std::string error;
    if (!ParseArguments(args, {{"--hex"}, {}}, a, error)) {
        return UsageError(command, error);
    }
    if (a.positional.empty() || a.positional.size() > 2) {
        return UsageError(command, "expected TYPE and at most one FILE");
    }
    type = FindRecordType(a.positional[0]);
    if (type == nullptr) {
        return UsageError(command, "unknown type '" + a.positional[0] + "'; 'kavo-push types' lists them");
    }
    return EXIT_OK;
}

std::string InputPath(const Arguments& a)
{
    return a.positional.size() == 2 ? a.positional[1] : "-";
}

int RunDecode(const std::vector<std::string>& args)
{
    Arguments a;
    const RecordType* type = nullptr;
    if (int status = ParseRecordArguments("decode", args, a, type); status != EXIT_OK) {
        return status;
    }
    std::string bytes;
    std::string error;
    if (!ReadBytes(InputPath(a), a.Has("--hex"), bytes, error)) {
        return Failed("decode", error);
    }
    Kavo::Parcel parcel;
    if (!parcel.ParseFrom(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size())) {
        return Failed("decode", "the input is larger than a parcel holds");
    }
    ShowErrorLog();
    Json::Value json;
    if (!type->decode(parcel, json)) {
        return Failed("decode", std::string("the bytes do not hold a ") + type->name);
    }
    if (parcel.GetReadableBytes() != 0) {
        std::cerr << "kavo-push decode: warning: " << parcel.GetReadableBytes() << " bytes after the " << type->name
                  << " are ignored\n";
    }
    WriteStdout(JsonText(json));
    return EXIT_OK;
}

int RunEncode(const std::vector<std::string>& args)
{
    Arguments a;
    const RecordType* type = nullptr;
    if (int status = ParseRecordArguments("encode", args, a, type); status != EXIT_OK) {
        return status;
    }
    std::string text;
    std::string error;
    Json::Value json;
    if (!ReadInput(InputPath(a), text, error) || !ParseJson(text, json, error)) {
        return Failed("encode", error);
    }
    ShowErrorLog();
    Kavo::Parcel parcel;
    if (!type->encode(json, parcel, error)) {
        return Failed("encode", error);
    }
    std::string bytes(reinterpret_cast<const char*>(parcel.GetData()), parcel.GetDataSize());
    WriteStdout(a.Has("--hex") ? ToHex(bytes) + "\n" : bytes);
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND("types", "list the record types that decode and encode know",
                      "usage: kavo-push types\n\n"
                      "Prints each record type, a tab and what the record holds, one per line.\n"
                      "Exit status: 0; 2 on bad usage.\n",
                      RunTypes);

KAVO_REGISTER_COMMAND("decode", "print a record read from parcel bytes as JSON",
                      "usage: kavo-push decode TYPE [FILE|-] [--hex]\n\n"
                      "Reads the parcel bytes of one TYPE record (see 'kavo-push types') from FILE, or\n"
                      "standard input when FILE is - or absent, with the library's own reader, and\n"
                      "prints the record as one JSON document. --hex reads hex text instead of raw\n"
                      "bytes (white space ignored). Bytes left after the record are ignored with a\n"
                      "warning on standard error.\n"
                      "Exit status: 0; 1 when the input cannot be read or the bytes do not hold the\n"
                      "record (the library's log lines on standard error say why); 2 on bad usage.\n",
                      RunDecode);

KAVO_REGISTER_COMMAND("encode", "write a record given as JSON as parcel bytes",
                      "usage: kavo-push encode TYPE [FILE|-] [--hex]\n\n"
                      "Reads the JSON form of one TYPE record (the README describes each) from FILE,\n"
                      "or standard input when FILE is - or absent, and writes the bytes of its parcel\n"
                      "to standard output; --hex writes them as one line of hex. Every field is\n"
                      "checked: a missing, unknown or mistyped one is named in the message.\n"
                      "Exit status: 0; 1 when the input cannot be read or is not a valid record;\n"
                      "2 on bad usage.\n",
                      RunEncode);

}  // namespace KavoTool
