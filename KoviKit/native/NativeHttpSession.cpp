#include "KoviKit/native/NativeHttpSession.h"

#include <curl/curl.h>

#include <string_view>

#include "KoviKit/foundation/Trap.h"

namespace kovi {
namespace {

std::size_t receiveBody(char* data, std::size_t size, std::size_t count, void* context) {
  auto& response = *static_cast<NativeHttpResponse*>(context);
  const std::size_t length = size * count;
  if (response.body.size() + length > kNativeResponseBodyLimit) {
    // Returning less than was given makes libcurl end the transfer at once.
    response.bodyOverLimit = true;
    return 0;
  }
  response.body.append(data, length);
  return length;
}

std::size_t receiveHeader(char* data, std::size_t size, std::size_t count, void* context) {
  auto& response = *static_cast<NativeHttpResponse*>(context);
  const std::size_t length = size * count;
  const std::string_view line(data, length);
  if (line.starts_with("HTTP/")) {
    // A status line starts a new response (after "100 Continue", say); only
    // the final response's headers count.
    response.headers.clear();
  } else if (const auto colon = line.find(':'); colon != std::string_view::npos && colon > 0) {
    response.headers.push_back({std::string(line.substr(0, colon)), std::string(trimmedHeaderValue(line.substr(colon + 1)))});
  }
  return length;
}

void append(curl_slist*& list, const std::string& line) {
  curl_slist* extended = curl_slist_append(list, line.c_str());
  if (extended == nullptr) trap("out of memory building request headers");
  list = extended;
}

curl_slist* requestHeaders(const NativeHttpRequest& request) {
  curl_slist* list = nullptr;
  append(list, "Accept: application/json");
  if (request.body) append(list, "Content-Type: application/json");
  if (request.bearerToken) append(list, "Authorization: Bearer " + *request.bearerToken);
  // libcurl keeps no cache of its own; this keeps proxies from answering
  // with stored data.
  append(list, "Cache-Control: no-cache");
  // Send POST bodies at once instead of waiting for "100 Continue".
  append(list, "Expect:");
  for (const NativeHttpHeader& header : request.extraHeaders) append(list, header.name + ": " + header.value);
  return list;
}

void initialiseCurlOnce() {
  static const CURLcode status = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (status != CURLE_OK) trap("libcurl could not be initialised");
}

}  // namespace

NativeHttpSession::NativeHttpSession(std::chrono::milliseconds timeout) {
  initialiseCurlOnce();
  handle_ = curl_easy_init();
  if (handle_ == nullptr) trap("libcurl could not create a handle");
  curl_easy_setopt(handle_, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle_, CURLOPT_TIMEOUT_MS, static_cast<long>(timeout.count()));
  curl_easy_setopt(handle_, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle_, CURLOPT_FOLLOWLOCATION, 0L);
  // Refuses a declared Content-Length over the limit before any body arrives;
  // the write callback catches bodies without one.
  curl_easy_setopt(handle_, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(kNativeResponseBodyLimit));
  curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, receiveBody);
  curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, receiveHeader);
}

NativeHttpSession::~NativeHttpSession() {
  curl_easy_cleanup(handle_);
  curl_slist_free_all(headers_);
}

curl_slist* NativeHttpSession::headersFor(const NativeHttpRequest& request) {
  HeaderKey key{request.body.has_value(), request.bearerToken, request.extraHeaders};
  if (headerKey_ != key) {
    curl_slist_free_all(headers_);
    headers_ = requestHeaders(request);
    headerKey_ = std::move(key);
  }
  return headers_;
}

std::expected<NativeHttpResponse, NativeTransportFailure> NativeHttpSession::perform(const NativeHttpRequest& request) {
  std::lock_guard lock(mutex_);
  NativeHttpResponse response;
  char errorText[CURL_ERROR_SIZE] = {};

  curl_easy_setopt(handle_, CURLOPT_URL, request.url.c_str());
  curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headersFor(request));
  if (request.body) {
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body->size()));
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, request.body->data());
  } else {
    curl_easy_setopt(handle_, CURLOPT_HTTPGET, 1L);
  }
  curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &response);
  curl_easy_setopt(handle_, CURLOPT_HEADERDATA, &response);
  curl_easy_setopt(handle_, CURLOPT_ERRORBUFFER, errorText);

  const CURLcode result = curl_easy_perform(handle_);
  // The handle outlives these locals; leave it pointing at none of them.
  curl_easy_setopt(handle_, CURLOPT_ERRORBUFFER, nullptr);
  curl_easy_setopt(handle_, CURLOPT_WRITEDATA, nullptr);
  curl_easy_setopt(handle_, CURLOPT_HEADERDATA, nullptr);

  if (result == CURLE_FILESIZE_EXCEEDED) response.bodyOverLimit = true;
  if (result != CURLE_OK && !response.bodyOverLimit) {
    long status = 0;
    curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &status);
    // libcurl refuses a header line over its limit (100 KB) as "Out of
    // memory"; once a status line has arrived, that is what it means.
    if (result == CURLE_OUT_OF_MEMORY && status != 0) {
      return std::unexpected(NativeTransportFailure{"a response header is larger than the 100 KB libcurl accepts"});
    }
    std::string reason = curl_easy_strerror(result);
    if (errorText[0] != '\0') reason += std::string(": ") + errorText;
    return std::unexpected(NativeTransportFailure{std::move(reason)});
  }
  if (response.bodyOverLimit) response.body.clear();
  curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &response.status);
  return response;
}

}  // namespace kovi
