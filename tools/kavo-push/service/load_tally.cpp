#include "service/load_tally.h"

#include <sstream>

namespace KavoTool {

namespace {

// The counters by name, for the text form.
template <typename Tally, typename Visit>
void EachCounter(Tally& tally, Visit visit)
{
    visit("sent", tally.sent);
    visit("answered", tally.answered);
    visit("notSent", tally.notSent);
    visit("lost", tally.lost);
    visit("refused", tally.refused);
    visit("duplicated", tally.duplicated);
    visit("misdirected", tally.misdirected);
    visit("wrongCode", tally.wrongCode);
    visit("outage", tally.outage);
}

}  // namespace

void LoadTally::Problem(const std::string& text)
{
    if (firstProblem.empty()) {
        firstProblem = text;
    }
}

void LoadTally::Merge(const LoadTally& other)
{
    EachCounter(*this, [&other](const char* name, uint64_t& value) {
        EachCounter(other, [name, &value](const char* otherName, const uint64_t& add) {
            if (std::string(name) == otherName) {
                value += add;
            }
        });
    });
    for (const auto& [code, count] : other.codes) {
        codes[code] += count;
    }
    for (const auto& [fault, count] : other.faults) {
        faults[fault] += count;
    }
    latency.Merge(other.latency);
    Problem(other.firstProblem);
}

std::string LoadTally::Serialise() const
{
    std::ostringstream out;
    EachCounter(*this, [&out](const char* name, const uint64_t& value) { out << name << ' ' << value << '\n'; });
    for (const auto& [code, count] : codes) {
        out << "code " << code << ' ' << count << '\n';
    }
    for (const auto& [fault, count] : faults) {
        out << "fault " << fault << ' ' << count << '\n';
    }
    out << "latency " << latency.Serialise() << '\n';
    out << "problem " << firstProblem << '\n';
    return out.str();
}

bool LoadTally::Parse(const std::string& text)
{
    std::istringstream in(text);
    std::string line;
    size_t fields = 0;
    while (std::getline(in, line)) {
        std::istringstream item(line);
        std::string key;
        item >> key;
        std::string rest = line.size() > key.size() ? line.substr(key.size() + 1) : "";
        if (key == "code" || key == "fault") {
            std::string name;
            uint64_t count = 0;
            item >> name >> count;
            if (key == "code") {
                codes[static_cast<int32_t>(std::stol(name))] += count;
            } else {
                faults[name] += count;
            }
        } else if (key == "latency") {
            fields += latency.Parse(rest) ? 1 : 0;
        } else if (key == "problem") {
            firstProblem = rest;
        } else {
            EachCounter(*this, [&](const char* name, uint64_t& value) {
                if (key == name && (item >> value)) {
                    ++fields;
                }
            });
        }
    }
    return fields == 10;  // the nine counters and the latency
}

}  // namespace KavoTool
