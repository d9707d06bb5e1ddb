#include "service/latency_histogram.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace KavoTool {

namespace {

constexpr int SUB_BITS = 5;                  // 32 buckets per power of two
constexpr uint64_t LINEAR = 2u << SUB_BITS;  // below this every value has a bucket of its own
constexpr int LARGEST_POWER = 40;            // about 12 days in microseconds
constexpr size_t BUCKETS = LINEAR + (LARGEST_POWER - SUB_BITS) * (1u << SUB_BITS);

int HighestBit(uint64_t value)
{
    return 63 - __builtin_clzll(value);
}

size_t BucketOf(uint64_t micros)
{
    if (micros < LINEAR) {
        return static_cast<size_t>(micros);
    }
    int power = std::min(HighestBit(micros), LARGEST_POWER);
    uint64_t sub = (micros >> (power - SUB_BITS)) & ((1u << SUB_BITS) - 1);
    size_t index = LINEAR + static_cast<size_t>(power - SUB_BITS - 1) * (1u << SUB_BITS) + sub;
    return std::min(index, BUCKETS - 1);
}

// The largest value that falls into the bucket.
uint64_t UpperBound(size_t index)
{
    if (index < LINEAR) {
        return index;
    }
    size_t above = index - LINEAR;
    int power = static_cast<int>(above >> SUB_BITS) + SUB_BITS + 1;
    uint64_t sub = above & ((1u << SUB_BITS) - 1);
    return (uint64_t{1} << power) + ((sub + 1) << (power - SUB_BITS)) - 1;
}

}  // namespace

LatencyHistogram::LatencyHistogram() : buckets_(BUCKETS, 0) {}

void LatencyHistogram::Add(uint64_t micros)
{
    ++buckets_[BucketOf(micros)];
    ++count_;
    max_ = std::max(max_, micros);
}

void LatencyHistogram::Merge(const LatencyHistogram& other)
{
    for (size_t i = 0; i < BUCKETS; ++i) {
        buckets_[i] += other.buckets_[i];
    }
    count_ += other.count_;
    max_ = std::max(max_, other.max_);
}

uint64_t LatencyHistogram::Percentile(double fraction) const
{
    if (count_ == 0) {
        return 0;
    }
    auto wanted = static_cast<uint64_t>(std::ceil(fraction * static_cast<double>(count_)));
    uint64_t seen = 0;
    for (size_t i = 0; i < BUCKETS; ++i) {
        seen += buckets_[i];
        if (seen >= std::max<uint64_t>(wanted, 1)) {
            return std::min(UpperBound(i), max_);
        }
    }
    return max_;
}

std::string LatencyHistogram::Bars(int rows, int width) const
{
    if (count_ == 0 || rows < 1) {
        return "";
    }
    // Rows evenly spaced on a log scale between the fastest and the slowest sample.
    double low = std::max<double>(1.0, static_cast<double>(Percentile(0.0)));
    double high = std::max<double>(low + 1, static_cast<double>(max_));
    std::vector<uint64_t> limits;
    std::vector<uint64_t> counts;
    for (int row = 1; row <= rows; ++row) {
        limits.push_back(static_cast<uint64_t>(low * std::pow(high / low, static_cast<double>(row) / rows)));
        counts.push_back(0);
    }
    limits.back() = max_;
    size_t row = 0;
    for (size_t i = 0; i < BUCKETS; ++i) {
        while (row + 1 < limits.size() && UpperBound(i) > limits[row]) {
            ++row;
        }
        counts[row] += buckets_[i];
    }
    uint64_t most = *std::max_element(counts.begin(), counts.end());
    std::ostringstream out;
    for (size_t i = 0; i < limits.size(); ++i) {
        char line[64];
        std::snprintf(line, sizeof(line), "  %10s [%llu]\t|", FormatMicros(limits[i]).c_str(),
                      static_cast<unsigned long long>(counts[i]));
        auto bar = most == 0 ? 0 : static_cast<size_t>(counts[i] * static_cast<uint64_t>(width) / most);
        out << line << std::string(bar, '#') << "\n";
    }
    return out.str();
}

std::string LatencyHistogram::Serialise() const
{
    std::ostringstream out;
    out << max_;
    for (size_t i = 0; i < BUCKETS; ++i) {
        if (buckets_[i] != 0) {
            out << ' ' << i << ':' << buckets_[i];
        }
    }
    return out.str();
}

bool LatencyHistogram::Parse(const std::string& text)
{
    std::istringstream in(text);
    LatencyHistogram parsed;
    if (!(in >> parsed.max_)) {
        return false;
    }
    size_t index = 0;
    char colon = 0;
    uint64_t count = 0;
    while (in >> index >> colon >> count) {
        if (colon != ':' || index >= BUCKETS) {
            return false;
        }
        parsed.buckets_[index] += count;
        parsed.count_ += count;
    }
    if (!in.eof()) {
        return false;
    }
    *this = std::move(parsed);
    return true;
}

std::string FormatMicros(uint64_t micros)
{
    char text[32];
    if (micros < 1000) {
        std::snprintf(text, sizeof(text), "%llu µs", static_cast<unsigned long long>(micros));
    } else if (micros < 1000000) {
        std::snprintf(text, sizeof(text), "%.2f ms", static_cast<double>(micros) / 1e3);
    } else {
        std::snprintf(text, sizeof(text), "%.2f s", static_cast<double>(micros) / 1e6);
    }
    return text;
}

}  // namespace KavoTool
