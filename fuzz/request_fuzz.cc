// The explorer's request side, in-process over the sample: the HTTP
// library's parsing of what a client sends, the Host and token checks, the
// routing and the API's parameters, and the answers they make.
//
// Input: a byte of flags, then the rest.
//   bit 0: the server that needs the token "fuzz-token" (its cookie is
//          refgrove_token_0), else the one that needs none;
//   bit 1: the rest is what a client sends on one connection, whole (the
//          Host "fuzz" is answered with any port); else it is a request
//          target, sent as "GET <target> HTTP/1.1" with Host "fuzz".
// Every answer must be an HTTP/1.1 response and none a 500 (something
// thrown that the API does not expect); a JSON body must be valid JSON and
// an error's must have its "error"; a GET of /api/... is answered in JSON.
#include <cctype>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "core/data_set_slot.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/sample_set.h"
#include "web/explorer_server.h"

namespace {

using refgrove::web::ExplorerServer;

struct Served {
  refgrove::DataSetSlot slot;
  std::unique_ptr<ExplorerServer> open, with_token;
};

Served& served() {
  static Served* s = [] {
    auto* s = new Served;
    s->slot.replace(refgrove::fuzz::sample_set());
    refgrove::web::ExplorerOptions options;
    options.allowed_hosts = {"fuzz"};
    s->open = std::make_unique<ExplorerServer>(s->slot, options);
    options.token = "fuzz-token";
    s->with_token = std::make_unique<ExplorerServer>(s->slot, options);
    return s;
  }();
  return *s;
}

struct Response {
  int status = 0;
  std::string content_type;
  bool encoded = false;  // compressed, or a range of the content
  std::string_view body;
};

// The value of the header line starting `line` with `name` (lower case).
bool header_is(std::string_view line, std::string_view name, std::string_view& value) {
  if (line.size() < name.size() + 1 || line[name.size()] != ':') return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(line[i])) != name[i]) return false;
  }
  value = line.substr(name.size() + 1);
  while (value.starts_with(' ')) value.remove_prefix(1);
  return true;
}

// Takes the first response off `out`; false when `out` does not start with
// a whole one.
bool next_response(std::string_view& out, Response& r) {
  const std::size_t head_end = out.find("\r\n\r\n");
  if (!out.starts_with("HTTP/1.1 ") || out.size() < 12 || head_end == std::string_view::npos) return false;
  r = Response{};
  for (int i = 9; i < 12; ++i) {
    if (out[i] < '0' || out[i] > '9') return false;
    r.status = r.status * 10 + (out[i] - '0');
  }
  std::size_t length = 0;
  std::string_view head = out.substr(0, head_end + 2), value;
  for (std::size_t at = head.find("\r\n") + 2; at < head.size(); at = head.find("\r\n", at) + 2) {
    const std::string_view line = head.substr(at, head.find("\r\n", at) - at);
    if (header_is(line, "content-length", value)) std::from_chars(value.data(), value.data() + value.size(), length);
    if (header_is(line, "content-type", value)) r.content_type = value;
    if (header_is(line, "content-encoding", value) || header_is(line, "content-range", value)) r.encoded = true;
  }
  if (out.size() - head_end - 4 < length) return false;
  r.body = out.substr(head_end + 4, length);
  out.remove_prefix(head_end + 4 + length);
  return true;
}

void check(const Response& r) {
  FUZZ_CHECK(r.status != 500);
  if (r.content_type != "application/json" || r.encoded) return;
  FUZZ_CHECK(nlohmann::json::accept(r.body));
  if (r.status >= 400) FUZZ_CHECK(nlohmann::json::parse(r.body).at("error").is_string());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::uint8_t flags = data[0];
  const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  ExplorerServer& server = (flags & 1) != 0 ? *served().with_token : *served().open;
  const bool whole = (flags & 2) != 0;
  const std::string requests =
      whole ? std::string(rest) : "GET " + std::string(rest) + " HTTP/1.1\r\nHost: fuzz\r\nConnection: close\r\n\r\n";
  const std::string answers = server.answer(requests);
  std::string_view out = answers;
  FUZZ_CHECK(out.empty() || out.starts_with("HTTP/1.1 "));
  // A HEAD's answer announces a body that it does not have: with one among
  // them, the answers cannot be told apart, and only the first status is
  // checked.
  if (requests.find("HEAD") != std::string::npos) {
    FUZZ_CHECK(!out.starts_with("HTTP/1.1 500"));
    return 0;
  }
  Response r;
  for (int n = 0; next_response(out, r); ++n) {
    check(r);
    if (n == 0 && !whole && rest.starts_with("/api/") && r.status == 200) {
      FUZZ_CHECK(r.content_type == "application/json");
    }
  }
  return 0;
}
