// Requests per second through the account client against a bare libcurl loop,
// both over one keep-alive connection to the same in-process loopback server,
// in the same run. The transport adds headers, the body limit, judging the
// response and decoding it; the ratio shows what that costs.
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <httplib.h>

#include <cstdio>
#include <algorithm>
#include <map>
#include <string>
#include <thread>

#include "KoviKit/native/NativeAccountAPI.h"

namespace kovi {

struct BenchProfile {
  std::string name;
  int level = 0;
};

template <>
struct JsonDecoder<BenchProfile> {
  static Decoded<BenchProfile> decode(const JsonView& json) {
    auto name = json.get<std::string>("name");
    if (!name) return std::unexpected(name.error());
    auto level = json.get<int>("level");
    if (!level) return std::unexpected(level.error());
    return BenchProfile{*name, *level};
  }
};

namespace {

constexpr const char* kProfile = R"({"name":"Ada","level":7,"cat":{"mood":"happy","growth":42}})";

class BenchServer {
 public:
  BenchServer() {
    server_.Get("/api/native/account/profile", [](const httplib::Request&, httplib::Response& response) {
      response.set_content(kProfile, "application/json");
    });
    server_.set_keep_alive_max_count(100'000'000);
    server_.set_tcp_nodelay(true);
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
  }
  ~BenchServer() {
    server_.stop();
    thread_.join();
  }
  std::string origin() const { return "http://127.0.0.1:" + std::to_string(port_); }

 private:
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
};

BenchServer& server() {
  static BenchServer instance;
  return instance;
}

void transport(benchmark::State& state) {
  const auto origin = NativeServiceOrigin::parse(server().origin());
  if (!origin) {
    state.SkipWithError(origin.error().c_str());
    return;
  }
  NativeAccountAPI api(*origin);
  for (auto _ : state) {
    auto profile = api.send<BenchProfile>("/profile", std::nullopt, "bench-token");
    if (!profile) {
      state.SkipWithError(profile.error().description().c_str());
      return;
    }
    benchmark::DoNotOptimize(profile);
  }
  state.SetItemsProcessed(state.iterations());
}

std::size_t collect(char* data, std::size_t size, std::size_t count, void* body) {
  static_cast<std::string*>(body)->append(data, size * count);
  return size * count;
}

void bareCurl(benchmark::State& state) {
  const std::string url = server().origin() + "/api/native/account/profile";
  CURL* handle = curl_easy_init();
  std::string body;
  curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, collect);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
  for (auto _ : state) {
    body.clear();
    if (curl_easy_perform(handle) != CURLE_OK) {
      state.SkipWithError("bare request failed");
      break;
    }
    benchmark::DoNotOptimize(body);
  }
  curl_easy_cleanup(handle);
  state.SetItemsProcessed(state.iterations());
}

// Rounds alternate the two so that machine noise falls on both alike; the
// ratio is the median of the rounds' ratios.
constexpr int kRounds = 9;

void registerRounds() {
  for (int round = 0; round < kRounds; ++round) {
    benchmark::RegisterBenchmark("bareCurl", bareCurl)->UseRealTime()->MinTime(0.3);
    benchmark::RegisterBenchmark("transport", transport)->UseRealTime()->MinTime(0.3);
  }
}

// Keeps each round's rate (requests per second of real time) while printing
// as usual.
class RateReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const double seconds = run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
      if (seconds > 0) rates[run.run_name.function_name].push_back(1.0 / seconds);
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, std::vector<double>> rates;
};

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

}  // namespace
}  // namespace kovi

int main(int argc, char** argv) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  benchmark::Initialize(&argc, argv);
  kovi::registerRounds();
  kovi::RateReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const auto& subject = reporter.rates["transport"];
  const auto& baseline = reporter.rates["bareCurl"];
  if (!subject.empty() && subject.size() == baseline.size()) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < subject.size(); ++round) ratios.push_back(subject[round] / baseline[round]);
    std::printf("transport: %.0f requests/s, bare libcurl: %.0f requests/s (medians of %zu rounds)\n",
                kovi::median(subject), kovi::median(baseline), subject.size());
    std::printf("ratio: transport/bare = %.2fx (median of the rounds; target >= 0.80x)\n", kovi::median(ratios));
  }
  benchmark::Shutdown();
  return 0;
}
