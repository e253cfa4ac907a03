// Finding and replacing in documents of a million values. Run with QT_QPA_PLATFORM=offscreen.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "IniInput.h"
#include "RegInput.h"
#include "documents/ini/IniReader.h"
#include "documents/reg/RegReader.h"
#include "documents/reg/RegWholeReader.h"
#include "windows/ini/IniReplacer.h"
#include "windows/ini/IniSearch.h"
#include "windows/reg/RegReplacer.h"
#include "windows/reg/RegSearch.h"

namespace tme {
namespace {

constexpr std::size_t kReplacements = 10'000;
using Clock = std::chrono::steady_clock;

struct IniSubject {
  using Replacer = IniReplacer;
  IniTree document;

  explicit IniSubject(Holding holding) {
    document.Reset("f.ini", holding);
    std::string text = MakeIniInput(20'000, 50);
    if (holding == Holding::Whole)
      ReadWholeIni(document, std::move(text));
    else
      ReadIni(document, std::move(text), {[](std::string_view) { return true; }});
  }
  std::unique_ptr<SearchSource> Source() const { return std::make_unique<IniSearchSource>(document); }
};

struct RegSubject {
  using Replacer = RegReplacer;
  RegDocument document;

  explicit RegSubject(Holding holding) {
    std::string text = WithTypedValues(MakeRegInput(100'000, 10));
    if (holding == Holding::Whole)
      ReadWholeReg(document, std::move(text), {});
    else
      ReadReg(document, std::move(text),
              {.wrong_header = [] { return true; }, .large_file = [] { return true; }, .progress = {}});
  }
  std::unique_ptr<SearchSource> Source() const { return std::make_unique<RegSearchSource>(document); }
};

std::shared_ptr<const TextMatcher> Plain(std::string_view wanted) {
  return std::make_shared<PlainMatcher>(wanted, SearchCase::Ignore, SearchWords::Any);
}

/// All of it, in slices as a window searches.
template <class Subject>
void BM_FindAll(benchmark::State& state, Holding holding, std::string_view wanted) {
  const Subject subject(holding);
  TreeSearch search(subject.Source());
  double longest = 0;
  for (auto _ : state) {
    search.Start(~SearchFields{0}, Plain(wanted));
    for (bool goes_on = true; goes_on;) {
      const auto start = Clock::now();
      goes_on = search.GoOn(start + std::chrono::milliseconds(8));
      longest = std::max(longest, std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
  }
  state.counters["hits"] = static_cast<double>(search.Hits().size());
  state.counters["slice_ms"] = longest;
}

/// Ten thousand texts planned and replaced, as one step.
template <class Subject>
void BM_Replace(benchmark::State& state, Holding holding, std::string_view wanted) {
  Subject subject(holding);
  TreeSearch search(subject.Source());
  const auto matcher = Plain(wanted);
  search.Start(~SearchFields{0}, matcher);
  search.GoOn(Clock::time_point::max());
  if (search.Hits().size() < kReplacements) std::abort();
  std::size_t done = 0;
  for (auto _ : state) {
    typename Subject::Replacer replacer(subject.document);
    std::vector<Replacement> plans;
    for (std::size_t index = 0; index < kReplacements; ++index) {
      const SearchHit& hit = search.Hits()[index * (search.Hits().size() / kReplacements)];
      auto plan = replacer.Plan(hit.Place(), hit.field, {.matcher = *matcher, .with = "7"});
      if (plan && plan->refusal.isEmpty()) plans.push_back(std::move(*plan));
    }
    {
      const EditableDocument::Step step(subject.document, EditName::Replace);
      for (const Replacement& plan : plans) replacer.Apply(plan);
    }
    done = plans.size();
    state.PauseTiming();
    subject.document.Undo();
    state.ResumeTiming();
  }
  state.counters["replaced"] = static_cast<double>(done);
}

void Register() {
  const auto add = [](const char* name, auto run) {
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond);
  };
  const auto both = [&](const std::string& kind, auto find, auto replace) {
    for (const Holding holding : {Holding::ByRules, Holding::Whole}) {
      const std::string name = kind + (holding == Holding::Whole ? "/whole" : "/by_rules");
      for (const char* wanted : {"zyzzyva", "9"})
        add((name + "/find_" + wanted).c_str(), [=](benchmark::State& state) { find(state, holding, wanted); });
      add((name + "/replace").c_str(), [=](benchmark::State& state) { replace(state, holding, "9"); });
    }
  };
  both("ini", BM_FindAll<IniSubject>, BM_Replace<IniSubject>);
  both("reg", BM_FindAll<RegSubject>, BM_Replace<RegSubject>);
}

}  // namespace
}  // namespace tme

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  tme::Register();
  benchmark::RunSpecifiedBenchmarks();
}
