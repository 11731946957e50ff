// UT_Json reading and writing against QJsonDocument (the target) and
// nlohmann-json (for reference), on one generated document of about 5 MB.
// Each reader starts from its natural input: a QString for UT_Json::parse, the
// UTF-8 bytes for the others.
#include <BrindleBaseCore/data/UT_Json.h>

#include "data_ratios.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <random>
#include <string>
#include <type_traits>

namespace {

// A scene-like document: an array of records with strings, integers, doubles,
// booleans, nested arrays and objects.
std::string generate(std::size_t targetSize)
{
    std::mt19937 random(42);
    auto pick = [&](int n) { return int(random() % unsigned(n)); };
    static char const* const words[] = {"layer",         "camera", "peg",   "drawing",   "Ébauche",
                                        "key \\\"A\\\"", "mask",   "light", "tone/shade"};
    std::string out = "[";
    auto add = [&out](auto const&... parts) {
        auto one = [&out](auto const& part) {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(part)>>)
                out.append(std::to_string(part));
            else
                out.append(part);
        };
        (one(parts), ...);
    };
    for (int id = 0; out.size() < targetSize; ++id) {
        add(id ? "," : "", "{\"id\":", id, ",\"name\":\"", words[pick(9)], pick(1000),
            "\",\"visible\":", pick(2) ? "true" : "false", ",\"opacity\":", pick(1000) / 1000.0,
            ",\"frames\":[");
        for (int f = 0, n = 4 + pick(12); f < n; ++f)
            add(f ? "," : "", pick(100000) - 5000);
        add("],\"keys\":[");
        for (int k = 0, m = 1 + pick(4); k < m; ++k)
            add(k ? "," : "", "{\"t\":", pick(10000) * 0.04, ",\"xy\":[", pick(20000) / 7.0, ",",
                -pick(20000) / 3.0, "],\"ease\":\"linear\"}");
        add("],\"parent\":");
        if (pick(3))
            add(pick(id + 1));
        else
            add("null");
        add(",\"meta\":{\"author\":\"user", pick(50), "\",\"nested\":[[1,2],[3,[4,5]]]}}");
    }
    out += "]";
    return out;
}

struct Inputs
{
    std::string utf8 = generate(5 << 20);
    QByteArray bytes = QByteArray::fromStdString(utf8);
    QString text = QString::fromUtf8(bytes);
    QVariant value = UT_Json::parse(text);
    nlohmann::json peerValue = nlohmann::json::parse(utf8);
};

Inputs const& inputs()
{
    static Inputs const data;
    return data;
}

// The time to build the result; freeing it afterwards is not counted, for
// either side (a temporary document on the way is).
template <typename Parse>
void timeParse(benchmark::State& state, Parse parse)
{
    for (auto _ : state) {
        auto result = parse();
        benchmark::DoNotOptimize(result);
        state.PauseTiming();
        result = {};
        state.ResumeTiming();
    }
    state.SetBytesProcessed(qint64(state.iterations()) * inputs().bytes.size());
}

void BM_ParseOurs(benchmark::State& state)
{
    timeParse(state, [] { return UT_Json::parse(inputs().text); });
}

void BM_ParseQt(benchmark::State& state)
{
    timeParse(state, [] { return QJsonDocument::fromJson(inputs().bytes).toVariant(); });
}

void BM_ParseNlohmann(benchmark::State& state)
{
    timeParse(state, [] { return nlohmann::json::parse(inputs().utf8); });
}

void BM_SerializeOurs(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(UT_Json::serialize(inputs().value));
    state.SetBytesProcessed(qint64(state.iterations()) * inputs().bytes.size());
}

void BM_SerializeQt(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(
            QJsonDocument::fromVariant(inputs().value).toJson(QJsonDocument::Compact));
    state.SetBytesProcessed(qint64(state.iterations()) * inputs().bytes.size());
}

void BM_SerializeNlohmann(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(inputs().peerValue.dump());
    state.SetBytesProcessed(qint64(state.iterations()) * inputs().bytes.size());
}

BENCHMARK(BM_ParseOurs)->Repetitions(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseQt)->Repetitions(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseNlohmann)->Repetitions(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SerializeOurs)->Repetitions(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SerializeQt)->Repetitions(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SerializeNlohmann)->Repetitions(5)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    // The readers must agree on the document before their speed means anything.
    bool ok = false;
    QVariant const ours = UT_Json::parse(inputs().text, ok);
    if (!ok || ours.toList().size() != QJsonDocument::fromJson(inputs().bytes).array().size()) {
        std::fprintf(stderr, "the generated document was not read alike\n");
        return 1;
    }
    std::printf("document: %lld bytes\n", static_cast<long long>(inputs().bytes.size()));
    benchmark::Initialize(&argc, argv);
    data_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("BM_ParseOurs", "BM_ParseQt", "JSON parse vs QJsonDocument", 4);
    reporter.printRatio("BM_ParseOurs", "BM_ParseNlohmann", "JSON parse vs nlohmann::json", 0);
    reporter.printRatio("BM_SerializeOurs", "BM_SerializeQt", "JSON serialize vs QJsonDocument", 5);
    reporter.printRatio("BM_SerializeOurs", "BM_SerializeNlohmann",
                        "JSON serialize vs nlohmann::json", 0);
    benchmark::Shutdown();
    return 0;
}
