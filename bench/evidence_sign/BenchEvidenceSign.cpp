// What signing one walking submission costs against what it cannot avoid.
// Signing: build the envelope of a three-day submission (96 closed buckets a
// day) around its payload hash, hash its canonical text and have the software
// device key assert over it — which reserves counters durably before it hands
// them out — against a bare OpenSSL ECDSA P-256 signature of 32 bytes. The
// payload hash (canonical JSON of the 288 buckets and its SHA-256) is made
// once per submission before signing; it is measured on its own and with the
// signing, against the same signature, for comparison.
// Keeping: write the pending record through the store against a bare write +
// fsync + rename of the same bytes, and, for comparison, against the same
// with the directory fsync a durable rename needs. Files live under $KOVI_BENCH_DIR (default:
// the system temporary directory), so the disk under test can be chosen.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/evidence/V6EvidencePendingStore.h"
#include "bench/BenchMedianRatio.h"

namespace {

using namespace kovi;

constexpr int kDays = 3;
constexpr int kBucketsPerDay = 96;
constexpr UnixMillis kStart = 1'777'881'600'000;
constexpr UnixMillis kBucket = 900'000;

std::filesystem::path benchDirectory() {
  const char* chosen = std::getenv("KOVI_BENCH_DIR");
  static const std::filesystem::path directory =
      (chosen != nullptr && *chosen != '\0' ? std::filesystem::path(chosen) : std::filesystem::temp_directory_path()) /
      ("kovi-bench-evidence-" + std::to_string(::getpid()));
  return directory;
}

std::vector<V6WalkingBucketEntry> entries() {
  std::vector<V6WalkingBucketEntry> result;
  for (int day = 0; day < kDays; ++day) {
    V6WalkingObservation observation;
    observation.windowStart = kStart + day * kBucketsPerDay * kBucket;
    observation.windowEnd = observation.windowStart + kBucketsPerDay * kBucket;
    observation.measurementCutoff = observation.windowEnd;
    for (int cell = 0; cell < kBucketsPerDay; ++cell) {
      const UnixMillis start = observation.windowStart + cell * kBucket;
      observation.buckets.push_back({start, start + kBucket, std::to_string((day * 37 + cell * 53) % 900)});
    }
    result.push_back({day, 0, std::move(observation)});
  }
  return result;
}

AttestedEvidenceEnvelope envelopeTemplate() {
  AttestedEvidenceEnvelope envelope;
  envelope.appIdentity = "TEAM.app.kovi";
  envelope.financialActorId = "actor-1";
  envelope.deviceKeyId = "device-key-1";
  envelope.writerEpoch = 1;
  envelope.chainId = 8453;
  envelope.registryAddress = "0x" + std::string(40, 'a');
  envelope.koviId = "42";
  envelope.rulesHash = std::string(64, 'b');
  envelope.requestId = "0123456789abcdef0123456789abcdef";
  envelope.challengeId = "challenge-1";
  envelope.challenge = std::string(64, 'c');
  envelope.issuedAt = kStart + 4 * 24 * 3'600'000;
  envelope.expiresAt = envelope.issuedAt + 600'000;
  return envelope;
}

void bareSign(benchmark::State& state) {
  EVP_PKEY* key = EVP_EC_gen("P-256");
  const Sha256Digest message = sha256("client data");
  std::vector<std::uint8_t> signature(80);
  for (auto _ : state) {
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    std::size_t length = signature.size();
    if (EVP_DigestSignInit(context, nullptr, EVP_sha256(), nullptr, key) != 1 ||
        EVP_DigestSign(context, signature.data(), &length, message.data(), message.size()) != 1) {
      state.SkipWithError("signing failed");
    }
    EVP_MD_CTX_free(context);
    benchmark::DoNotOptimize(signature.data());
  }
  EVP_PKEY_free(key);
}

AttestedEvidenceEnvelope envelopeFor(const std::vector<V6WalkingBucketEntry>& days, std::string payloadHash) {
  AttestedEvidenceEnvelope envelope = envelopeTemplate();
  for (const auto& entry : days) {
    envelope.windowIds.push_back(entry.day);
    envelope.expectedRevisions.push_back(entry.expectedRevision);
    envelope.measurementCutoffs.push_back(entry.observation.measurementCutoff);
  }
  envelope.evidencePayloadHash = std::move(payloadHash);
  return envelope;
}

// With `hashPayload`, the payload hash is made inside the loop too.
void envelopeSign(benchmark::State& state, bool hashPayload) {
  SoftwareDeviceKeyService keys(benchDirectory(), "TEAM.app.kovi");
  const std::string keyId = keys.generateKey().value();
  const auto days = entries();
  const std::string payloadHash = evidencePayloadHash(days);
  for (auto _ : state) {
    const auto envelope = envelopeFor(days, hashPayload ? evidencePayloadHash(days) : payloadHash);
    auto assertion = keys.generateAssertion(keyId, envelope.clientDataHash());
    if (!assertion) state.SkipWithError("assertion failed");
    benchmark::DoNotOptimize(assertion);
  }
}

void payloadHash(benchmark::State& state) {
  const auto days = entries();
  for (auto _ : state) benchmark::DoNotOptimize(evidencePayloadHash(days));
}

V6EvidencePendingStore::Record pendingRecord() {
  V6WalkingSubmission submission;
  submission.reference = "kovi-walk-1";
  submission.entries = entries();
  submission.envelope = envelopeFor(submission.entries, evidencePayloadHash(submission.entries));
  submission.assertion = {std::vector<std::uint8_t>(36, 1), std::vector<std::uint8_t>(71, 2)};
  return {"v6", "actor-1", "device-key-1", std::move(submission)};
}

// A bare write + fsync + rename; with `syncDirectory`, also the fsync of the
// directory that makes the rename itself survive a power loss.
void bareWrite(benchmark::State& state, bool syncDirectory) {
  const std::string bytes = V6EvidencePendingStore::encode(pendingRecord());
  std::filesystem::create_directories(benchDirectory());
  const std::string target = (benchDirectory() / "bare.json").string();
  const std::string temporary = target + ".tmp";
  for (auto _ : state) {
    // A pending record is always a new file, so the bare write makes one too.
    state.PauseTiming();
    std::filesystem::remove(target);
    state.ResumeTiming();
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0 || ::write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()) || ::fsync(fd) != 0) {
      state.SkipWithError("bare write failed");
    }
    ::close(fd);
    if (::rename(temporary.c_str(), target.c_str()) != 0) state.SkipWithError("rename failed");
    if (syncDirectory) {
      const int directory = ::open(benchDirectory().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
      if (directory < 0 || ::fsync(directory) != 0) state.SkipWithError("directory fsync failed");
      ::close(directory);
    }
  }
}

void pendingWrite(benchmark::State& state) {
  V6EvidencePendingStore store(benchDirectory());
  const auto record = pendingRecord();
  const auto path = store.pathFor(record.ownerID, record.reference());
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(path);
    state.ResumeTiming();
    if (!store.save(record)) state.SkipWithError("save failed");
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (auto* registered : {
           benchmark::RegisterBenchmark("bare_ecdsa_sign_32_bytes", bareSign),
           benchmark::RegisterBenchmark("envelope_hash_assert", envelopeSign, false),
           benchmark::RegisterBenchmark("payload_hash_288_buckets", payloadHash),
           benchmark::RegisterBenchmark("payload_hash_envelope_hash_assert", envelopeSign, true),
           benchmark::RegisterBenchmark("bare_write_fsync_rename", bareWrite, false),
           benchmark::RegisterBenchmark("bare_write_fsync_rename_fsync_directory", bareWrite, true),
           benchmark::RegisterBenchmark("pending_record_write", pendingWrite),
       }) {
    registered->Repetitions(7)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond);
  }
  kovi::bench::MedianKeeper keeper;
  benchmark::RunSpecifiedBenchmarks(&keeper);
  std::filesystem::remove_all(benchDirectory());
  benchmark::Shutdown();
  const bool signing = keeper.printRatio("envelope_hash_assert", "bare_ecdsa_sign_32_bytes", 1.3);
  keeper.printRatio("payload_hash_288_buckets", "bare_ecdsa_sign_32_bytes", std::nullopt);
  keeper.printRatio("payload_hash_envelope_hash_assert", "bare_ecdsa_sign_32_bytes", std::nullopt);
  const bool keeping = keeper.printRatio("pending_record_write", "bare_write_fsync_rename", 1.2);
  // The durable floor: what the store must do at least.
  keeper.printRatio("pending_record_write", "bare_write_fsync_rename_fsync_directory", std::nullopt);
  return signing && keeping ? 0 : 1;
}
