// Geometry kernel against Eigen and glm: 4x4 products, inverses and point
// transforms, and 2D affine composition and point transforms. Each pair runs
// on the same inputs in this process; the table at the end prints the ratio
// ours/peer next to its target.
#include <BrindleBaseCore/math/Matrix2x3.h>
#include <BrindleBaseCore/math/Matrix4x4.h>

#include "BenchReport.h"

#include <Eigen/Dense>
#include <benchmark/benchmark.h>
#include <glm/glm.hpp>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int count = 256;

struct Inputs
{
    std::vector<Math::Matrix4x4> ours;
    std::vector<glm::dmat4> glm4;
    std::vector<Eigen::Matrix4d, Eigen::aligned_allocator<Eigen::Matrix4d>> eigen;
    std::vector<Math::Point3d> points;
    std::vector<glm::dvec4> glmPoints;
    std::vector<Math::Matrix2x3> ours2d;
    std::vector<glm::dmat3> glm3;
    std::vector<Math::Point2d> points2d;
    std::vector<glm::dvec3> glmPoints2d;

    Inputs()
    {
        std::mt19937_64 rng(7);
        std::uniform_real_distribution<double> value(-2, 2);
        for (int i = 0; i < count; ++i) {
            double v[16];
            for (double& x : v)
                x = value(rng);
            v[15] += 5; // keep w away from 0
            ours.emplace_back(v);
            glm::dmat4 g;
            for (int c = 0; c < 4; ++c) {
                for (int r = 0; r < 4; ++r)
                    g[c][r] = v[4 * c + r];
            }
            glm4.push_back(g);
            eigen.push_back(Eigen::Map<Eigen::Matrix4d>(v));
            Math::Point3d p(value(rng), value(rng), value(rng));
            points.push_back(p);
            glmPoints.emplace_back(p.x(), p.y(), p.z(), 1.0);
            Math::Matrix2x3 m(Math::Vector2d(v[0], v[1]), Math::Vector2d(v[2], v[3]),
                              Math::Point2d(v[4], v[5]));
            ours2d.push_back(m);
            glm3.emplace_back(v[0], v[1], 0.0, v[2], v[3], 0.0, v[4], v[5], 1.0);
            points2d.emplace_back(p.x(), p.y());
            glmPoints2d.emplace_back(p.x(), p.y(), 1.0);
        }
    }
};

Inputs const& inputs()
{
    static const Inputs in;
    return in;
}

// Runs op(i) over every input and reports the time per operation.
template <typename Op>
void perItem(benchmark::State& state, Op op)
{
    for (auto _ : state) {
        for (int i = 0; i < count; ++i)
            op(i);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void oursProduct(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        Math::Matrix4x4 r = in.ours[i] * in.ours[(i + 1) % count];
        benchmark::DoNotOptimize(r);
    });
}
void glmProduct(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        glm::dmat4 r = in.glm4[i] * in.glm4[(i + 1) % count];
        benchmark::DoNotOptimize(r);
    });
}
void eigenProduct(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        Eigen::Matrix4d r = in.eigen[i] * in.eigen[(i + 1) % count];
        benchmark::DoNotOptimize(r);
    });
}
void oursIdentityProduct(benchmark::State& s)
{
    auto const& in = inputs();
    Math::Matrix4x4 const& id = Math::Matrix4x4::Identity;
    perItem(s, [&](int i) {
        Math::Matrix4x4 r = id * in.ours[i];
        benchmark::DoNotOptimize(r);
    });
}
// For scale: a plain copy of a Matrix4x4, which the compiler makes with nine
// 16-byte stores at the baseline instruction set. The identity product copies
// the other operand with 32-byte stores where the processor has them.
void oursCopy(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        Math::Matrix4x4 r = in.ours[i];
        benchmark::DoNotOptimize(r);
    });
}
void oursInverse(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        Math::Matrix4x4 r = in.ours[i].getInverse();
        benchmark::DoNotOptimize(r);
    });
}
void eigenInverse(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        Eigen::Matrix4d r = in.eigen[i].inverse();
        benchmark::DoNotOptimize(r);
    });
}
void oursPoint(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        Math::Point3d r = in.ours[i] * in.points[i];
        benchmark::DoNotOptimize(r);
    });
}
void glmPoint(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        glm::dvec4 h = in.glm4[i] * in.glmPoints[i];
        glm::dvec3 r = glm::dvec3(h) / h.w;
        benchmark::DoNotOptimize(r);
    });
}
void oursCompose2d(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        Math::Matrix2x3 r = in.ours2d[i] * in.ours2d[(i + 1) % count];
        benchmark::DoNotOptimize(r);
    });
}
void glmCompose2d(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        // The same composition: the left operand applies first.
        glm::dmat3 r = in.glm3[(i + 1) % count] * in.glm3[i];
        benchmark::DoNotOptimize(r);
    });
}
void oursPoint2d(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        Math::Point2d r = in.ours2d[i].Transform(in.points2d[i]);
        benchmark::DoNotOptimize(r);
    });
}
void glmPoint2d(benchmark::State& s)
{
    auto const& in = inputs();
    perItem(s, [&](int i) {
        glm::dvec3 r = in.glm3[i] * in.glmPoints2d[i];
        benchmark::DoNotOptimize(r);
    });
}

double fastest(std::vector<double> const& v)
{
    return *std::min_element(v.begin(), v.end());
}

BENCHMARK(oursProduct)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(glmProduct)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(eigenProduct)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(oursIdentityProduct)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(oursCopy)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(oursInverse)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(eigenInverse)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(oursPoint)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(glmPoint)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(oursCompose2d)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(glmCompose2d)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(oursPoint2d)->Repetitions(5)->ComputeStatistics("min", fastest);
BENCHMARK(glmPoint2d)->Repetitions(5)->ComputeStatistics("min", fastest);

// Keeps the best CPU time per operation (ns) over the repetitions of every
// benchmark: on a shared machine it is steadier than the wall-clock time.
class Recorder : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, double> nsPerItem;

    void ReportRuns(std::vector<Run> const& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (Run const& run : runs) {
            bool best = run.run_type == Run::RT_Aggregate && run.aggregate_name == "min";
            if (!best && (run.run_type != Run::RT_Iteration || run.iterations == 0))
                continue;
            double ns = run.GetAdjustedCPUTime() * 1e9 /
                        benchmark::GetTimeUnitMultiplier(run.time_unit) / count;
            auto [it, added] = nsPerItem.emplace(run.run_name.function_name, ns);
            if (!added && ns < it->second)
                it->second = ns;
        }
    }
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    Recorder recorder;
    benchmark::RunSpecifiedBenchmarks(&recorder);
    auto& t = recorder.nsPerItem;
    auto ratio = [&](char const* what, char const* ours, char const* peer, double target) {
        if (!t.count(ours) || !t.count(peer))
            return;
        bench_report::record(what, t[ours], t[peer], "ns/op", t[ours] / t[peer], target,
                             bench_report::Better::Lower);
    };
    std::printf("\nours / peer, time per operation:\n");
    ratio("Matrix4x4 product / glm dmat4", "oursProduct", "glmProduct", 1.0);
    ratio("Matrix4x4 product / Eigen Matrix4d", "oursProduct", "eigenProduct", 1.0);
    ratio("Matrix4x4 getInverse / Eigen inverse()", "oursInverse", "eigenInverse", 2.0);
    ratio("Matrix4x4 * Point3d / glm dmat4 * dvec4, /w", "oursPoint", "glmPoint", 1.2);
    ratio("Matrix2x3 composition / glm dmat3", "oursCompose2d", "glmCompose2d", 1.0);
    ratio("Matrix2x3 point transform / glm dmat3", "oursPoint2d", "glmPoint2d", 1.0);
    if (t.count("oursIdentityProduct")) {
        bench_report::record("Matrix4x4 product with flagged identity", t["oursIdentityProduct"],
                             NAN, "ns/op", NAN, 2.0, bench_report::Better::Lower);
        if (t.count("oursCopy"))
            bench_report::record("Matrix4x4 plain copy", t["oursCopy"], NAN, "ns/op", NAN, 0,
                                 bench_report::Better::Lower);
    }
    benchmark::Shutdown();
    return 0;
}
