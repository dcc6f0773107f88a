// `kovi call`: one request to the configured service, answered with the JSON
// body or with the error the apps would see.
#include <algorithm>
#include <chrono>
#include <expected>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <regex>
#include <string>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/native/NativeServiceClient.h"
#include "KoviKit/native/NativeServiceOrigin.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/ErrorAreas.h"
#include "tools/kovi/Input.h"
#include "tools/kovi/NumberOptions.h"
#include "tools/kovi/ServiceOrigin.h"

namespace kovi::tool {
namespace {

constexpr int kUsageError = 2;

struct CallOptions {
  std::string area;
  std::string path;
  std::optional<std::string> body;
  std::optional<std::string> token;
  double timeoutSeconds = 60;
};

// A failure before any request: bad configuration or arguments. Printed like
// CLI11's own usage errors, with the same exit status.
void refuse(const std::string& reason) {
  std::cerr << "kovi call: " << reason << '\n';
  exitStatus() = kUsageError;
}

// The request body as given, or read from a file with "@FILE" ("@-" is
// standard input); either way it must be JSON.
std::expected<std::string, std::string> requestBody(const std::string& argument) {
  std::string text = argument;
  if (argument.starts_with('@')) {
    auto contents = readInput(argument.substr(1));
    if (!contents) return std::unexpected(contents.error());
    text = std::move(*contents);
  }
  if (auto parsed = parseJson(text); !parsed) return std::unexpected("--body: " + parsed.error().message());
  return text;
}

nlohmann::ordered_json describeError(const NativeAccountError& error, const NativeServiceClient& client) {
  nlohmann::ordered_json description;
  description["error"] = error.kind();
  description["code"] = error.code() ? nlohmann::ordered_json(*error.code()) : nlohmann::ordered_json(nullptr);
  description["retryAfterSeconds"] =
      error.retryAfterSeconds() ? nlohmann::ordered_json(*error.retryAfterSeconds()) : nlohmann::ordered_json(nullptr);
  description["message"] = client.message(error);
  return description;
}

void print(const nlohmann::ordered_json& document) {
  std::cout << document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

void runCall(const CallOptions& options) {
  auto origin = configuredOrigin();
  if (!origin) return refuse(origin.error());
  std::optional<std::string> body;
  if (options.body) {
    auto text = requestBody(*options.body);
    if (!text) return refuse(text.error());
    body = std::move(*text);
  }

  // Areas without a table of their own still get the generic message for
  // their codes, never the raw code.
  const NativeErrorTable* known = findErrorArea(options.area);
  const NativeErrorTable unlisted{options.area, {}};
  NativeClientOptions clientOptions;
  clientOptions.timeout = std::chrono::milliseconds(static_cast<std::int64_t>(options.timeoutSeconds * 1000));
  clientOptions.transportFailureObserver = [](const NativeTransportFailure& failure) {
    std::cerr << "kovi call: no response: " << failure.reason << '\n';
  };
  NativeServiceClient client(*origin, known != nullptr ? *known : unlisted, std::move(clientOptions));

  auto answer = client.sendJson(options.path, std::move(body), options.token);
  if (answer) {
    print(*answer);
    exitStatus() = 0;
  } else {
    print(describeError(answer.error(), client));
    exitStatus() = 1;
  }
}

}  // namespace

void addCallCommand(CLI::App& app) {
  auto options = std::make_shared<CallOptions>();
  CLI::App* command = app.add_subcommand(
      "call",
      "Send one request to the service at $KOVI_SERVICE_ORIGIN + /api/native/AREA/PATH, the\n"
      "way the apps do: POST with --body, GET without. Prints the JSON body of a successful\n"
      "answer (exit 0), or one JSON object {\"error\", \"code\", \"retryAfterSeconds\", \"message\"}\n"
      "describing the failure (exit 1). The origin must be https://, or http:// to a loopback\n"
      "host (127.0.0.0/8, localhost, [::1]).");
  command->add_option("AREA", options->area, "The service area, such as account, working or v6/evidence")
      ->required()
      ->check(CLI::Validator(
          [](const std::string& area) {
            static const std::regex kArea("[a-z0-9_-]+(/[a-z0-9_-]+)*");
            return std::regex_match(area, kArea) ? std::string() : "expected lower-case path segments such as v6/wallet";
          },
          "AREA"));
  command->add_option("PATH", options->path, "The operation's path inside the area, such as /session")
      ->required()
      ->check(CLI::Validator(
          [](const std::string& path) {
            const bool printable = std::ranges::all_of(path, [](char c) { return c > ' ' && c < 0x7f && c != '#'; });
            return printable ? std::string() : "expected a URL path without spaces, control characters or '#'";
          },
          "PATH"));
  command->add_option("--body", options->body, "JSON to POST, or @FILE to read it from FILE (@- for standard input)");
  addTokenOption(command, options->token);
  addDurationOption(command, "--timeout", options->timeoutSeconds, "Seconds before the request is given up", 0.001,
                    3600.0)
      ->default_str("60");
  command->callback([options] { runCall(*options); });
}

}  // namespace kovi::tool
