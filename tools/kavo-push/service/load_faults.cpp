#include "service/load_faults.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "kavo/push/common/push_error.h"

namespace KavoTool {

namespace {

using B = ExtensionBehaviour;

struct FaultKind {
    const char* name;
    double FaultRates::*rate;
    ExtensionBehaviour behaviour;
};

const FaultKind KINDS[] = {
    {"crash", &FaultRates::crash, B::CRASH},
    {"hang", &FaultRates::hang, B::HANG},
    {"garbage", &FaultRates::garbage, B::GARBAGE},
    {"oversized", &FaultRates::oversized, B::LONG_TEXT},
};

bool ParseRate(const std::string& text, double& rate)
{
    if (text.empty()) {
        return false;
    }
    char* end = nullptr;
    rate = std::strtod(text.c_str(), &end);
    if (*end == '%' && end[1] == '\0') {
        rate /= 100;
    } else if (*end != '\0') {
        return false;
    }
    return rate >= 0 && rate <= 1;
}

}  // namespace

bool ParseFaultRates(const std::string& text, FaultRates& rates, std::string& error)
{
    FaultRates parsed;
    std::istringstream in(text);
    std::string item;
    double total = 0;
    while (std::getline(in, item, ',')) {
        size_t equals = item.find('=');
        const FaultKind* kind = nullptr;
        for (const auto& k : KINDS) {
            if (item.compare(0, equals, k.name) == 0 && equals == std::string(k.name).size()) {
                kind = &k;
            }
        }
        double rate = 0;
        if (equals == std::string::npos || kind == nullptr || !ParseRate(item.substr(equals + 1), rate)) {
            error = "bad fault '" + item + "' (expected crash|hang|garbage|oversized=RATE, RATE as 1% or 0.01)";
            return false;
        }
        parsed.*(kind->rate) = rate;
        total += rate;
    }
    if (total > 1) {
        error = "the fault rates add up to more than 100%";
        return false;
    }
    rates = parsed;
    return true;
}

std::string DescribeFaults(const FaultRates& rates)
{
    std::string text;
    for (const auto& kind : KINDS) {
        if (rates.*(kind.rate) > 0) {
            char item[64];
            std::snprintf(item, sizeof(item), "%s%s %g%%", text.empty() ? "" : ", ", kind.name,
                          rates.*(kind.rate) * 100);
            text += item;
        }
    }
    return text.empty() ? "none" : text;
}

ExtensionBehaviour PickFault(const FaultRates& rates, double draw)
{
    double below = 0;
    for (const auto& kind : KINDS) {
        below += rates.*(kind.rate);
        if (draw < below) {
            return kind.behaviour;
        }
    }
    return B::ANSWER;
}

int32_t ExpectedCode(ExtensionBehaviour behaviour)
{
    using namespace Kavo::Push;
    switch (behaviour) {
        case B::CRASH:
            return PUSH_ERR_EXTENSION_CALLBACK_FAILED;
        case B::HANG:
            return PUSH_ERR_EXTENSION_CALLBACK_TIMEOUT;
        case B::GARBAGE:
        case B::LONG_TEXT:
            return PUSH_ERR_NOTIFICATION_CONTENT_INVALID;
        default:
            return 0;
    }
}

bool IsOutageCode(int32_t code)
{
    // The queries give up as a system error; the extension query's own failure names the extension.
    return code == Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL || code == Kavo::Push::PUSH_ERR_EXTENSION_NOT_EXIST;
}

const char* FaultName(ExtensionBehaviour behaviour)
{
    for (const auto& kind : KINDS) {
        if (kind.behaviour == behaviour) {
            return kind.name;
        }
    }
    return "none";
}

}  // namespace KavoTool
