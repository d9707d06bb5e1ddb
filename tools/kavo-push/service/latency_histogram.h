// Latencies in microseconds, kept as counts in buckets a thirty-second of a power of two wide, so
// a percentile read back is within about 3% of the true one and a billion samples take 9 KiB.
// Draws itself as text bars the way load generators print their histograms. Not synchronised:
// one owner, or the owner's lock.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_LATENCY_HISTOGRAM_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_LATENCY_HISTOGRAM_H

#include <cstdint>
#include <string>
#include <vector>

namespace KavoTool {

class LatencyHistogram {
public:
    LatencyHistogram();

    void Add(uint64_t micros);
    void Merge(const LatencyHistogram& other);
    uint64_t Count() const { return count_; }
    uint64_t Max() const { return max_; }
    // The smallest latency at or under which `fraction` (0..1] of the samples lie; 0 when empty.
    uint64_t Percentile(double fraction) const;
    // About `rows` lines "  1.234 ms [count] |■■■■", each the samples up to that latency.
    std::string Bars(int rows, int width) const;

    // The counts as text and back, for passing a histogram between processes.
    std::string Serialise() const;
    bool Parse(const std::string& text);

private:
    std::vector<uint64_t> buckets_;
    uint64_t count_ = 0;
    uint64_t max_ = 0;
};

// "850 µs" below a millisecond, "1.27 ms" up to a second, "2.31 s" above.
std::string FormatMicros(uint64_t micros);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_LATENCY_HISTOGRAM_H
