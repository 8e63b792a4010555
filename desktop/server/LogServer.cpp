// Documents over HTTP with Basic authorization, by an HTTP library, and the ways to answer badly.
#include "desktop/server/LogServer.h"

#include <httplib.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "desktop/platform/Text.h"
#include "desktop/platform/WholeNumber.h"
#include "desktop/server/ServedDocument.h"

namespace desk {
namespace {

using Kind = Behaviour::Kind;

constexpr char kHost[] = "127.0.0.1";
constexpr char kList[] = "/";
constexpr char kXml[] = "application/xml";
constexpr char kPage[] =
    "<!DOCTYPE html>\n<html><head><title>Sign in</title></head>"
    "<body><p>Please sign in.</p></body></html>\n";

bool WriteSpaces(std::size_t /*offset*/, httplib::DataSink& sink) {
  static const std::string spaces(16 * 1024, ' ');
  return sink.write(spaces.data(), spaces.size());
}

// As a C string it would end there, and be another.
bool HoldsNul(const httplib::Request& request) {
  return request.target.find("%00") != std::string::npos ||
         request.path.find('\0') != std::string::npos;
}

}  // namespace

Behaviour ParseBehaviour(const std::string& text) {
  static const std::map<std::string, Kind> kByName = {
      {"hold", Kind::kHold},       {"stall", Kind::kStall}, {"cut", Kind::kCut},
      {"endless", Kind::kEndless}, {"page", Kind::kPage},   {"document", Kind::kDocument},
  };
  const auto found = kByName.find(text);
  if (found != kByName.end()) return {found->second, 0, {}};
  if (const auto status = WholeNumber(text, 400, 599)) return {Kind::kStatus, *status, {}};
  const std::string name = text.substr(0, text.find(':'));
  const std::string argument = text.substr(std::min(name.size() + 1, text.size()));
  if (name == "redirect" && !argument.empty()) return {Kind::kRedirect, 0, argument};
  const auto seconds = WholeNumber(argument, 0, 3600);
  if (name == "delay" && seconds) return {Kind::kDelay, *seconds, {}};
  throw std::invalid_argument("a server cannot answer with \"" + text + "\"");
}

LogServer::LogServer(Settings settings) : settings_(std::move(settings)) {}

LogServer::~LogServer() { Stop(); }

void LogServer::Start() {
  if (!std::filesystem::is_directory(settings_.directory)) {
    throw std::runtime_error(settings_.directory.string() + ": no directory of documents");
  }
  server_ = std::make_unique<httplib::Server>();
  // A held request keeps its thread, and nobody should have to wait for a connection that idles.
  server_->new_task_queue = [] { return std::make_unique<httplib::ThreadPool>(64).release(); };
  server_->set_keep_alive_max_count(1);
  // Before the library matches the path, byte by byte on the stack, or reads a body.
  server_->set_pre_routing_handler(
      [this](const httplib::Request& request, httplib::Response& response) {
        Answer(request, response);
        return httplib::Server::HandlerResponse::Handled;
      });
  Bind();
  stopping_ = false;
  thread_ = std::thread([this] { server_->listen_after_bind(); });
  while (!server_->is_running()) std::this_thread::yield();  // before that it cannot be stopped
}

void LogServer::Bind() {
  int listener = -1;
  server_->set_socket_options([&listener](int socket) {
    // The library's own options would let two servers share a port.
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    listener = socket;
  });
  const bool bound = settings_.port == 0 || server_->bind_to_port(kHost, settings_.port);
  port_ = settings_.port == 0 ? server_->bind_to_any_port(kHost) : settings_.port;
  // The library lets only five connections wait.
  if (bound && port_ > 0 && listen(listener, SOMAXCONN) == 0) return;
  server_.reset();
  throw std::runtime_error("cannot serve on 127.0.0.1:" + std::to_string(settings_.port));
}

void LogServer::Stop() {
  if (server_ == nullptr) return;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_all();
  server_->stop();
  thread_.join();
  server_.reset();
}

void LogServer::Misbehave(const std::string& path, const Behaviour& behaviour) {
  const std::lock_guard<std::mutex> lock(mutex_);
  paths_[path].behaviour = behaviour;
  changed_.notify_all();
}

int LogServer::Requests(const std::string& path) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return paths_[path].requests;
}

bool LogServer::WaitForRequests(const std::string& path, int count) {
  constexpr auto kTooLong = std::chrono::seconds(20);
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, kTooLong, [&] { return paths_[path].requests >= count; });
}

std::string LogServer::AskedName(const std::string& path) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return paths_[path].askedName;
}

Behaviour LogServer::Arrive(const httplib::Request& request) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Path& path = paths_[request.path];
  ++path.requests;
  path.askedName = request.get_param_value("name");
  changed_.notify_all();
  return path.behaviour;
}

void LogServer::WaitWhile(const std::string& path, Kind kind, std::chrono::seconds limit) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait_for(lock, limit, [&] { return stopping_ || paths_[path].behaviour.kind != kind; });
}

bool LogServer::IsAuthorized(const httplib::Request& request) const {
  if (settings_.user.empty()) return true;
  const auto [name, wanted] =
      httplib::make_basic_authentication_header(settings_.user, settings_.password);
  const std::string given = request.get_header_value(name);
  const std::size_t scheme = wanted.find(' ') + 1;
  return strncasecmp(given.c_str(), wanted.c_str(), scheme) == 0 &&
         given.compare(scheme, given.npos, wanted, scheme) == 0;
}

std::shared_ptr<const ServedDocument> LogServer::FindDocument(const std::string& path) const {
  const std::string name = path.substr(path.rfind('/') + 1);
  if (name.find('\0') != name.npos) return {};
  for (const std::string& candidate : {name, name + ".xml"}) {
    if (auto document = ServedDocument::Open(settings_.directory / candidate)) return document;
  }
  return {};
}

std::vector<std::string> LogServer::Documents() const {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator next(settings_.directory, error), end;
       !error && next != end; next.increment(error)) {
    const std::string name = next->path().filename();
    if (ServedDocument::Open(next->path()) != nullptr) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool LogServer::Has(const std::string& path) const {
  return path == kList || (path.rfind('/', 0) == 0 && FindDocument(path) != nullptr);
}

void LogServer::SendList(httplib::Response& response) const {
  std::string list;
  for (const std::string& name : Documents()) list += "/" + Printable(name) + "\n";
  response.set_content(list, "text/plain; charset=utf-8");
}

void LogServer::Send(const std::string& path, Kind kind, httplib::Response& response) {
  if (path == kList) return SendList(response);
  const auto document = FindDocument(path);
  if (document == nullptr) {
    response.status = 404;
    return;
  }
  if (document->size() == 0) return response.set_content("", kXml);
  const auto provide = [=](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
    const std::size_t half = document->size() / 2;
    if (offset >= half && kind == Kind::kCut) return false;
    if (offset >= half && kind == Kind::kStall) WaitWhile(path, kind);
    std::array<char, 16 * 1024> bytes;
    length = std::min({length, bytes.size(), offset < half ? half - offset : length});
    const std::size_t size = document->Read(offset, bytes.data(), length);
    return size > 0 && sink.write(bytes.data(), size);
  };
  response.set_content_provider(document->size(), kXml, provide);
}

bool LogServer::AnswerBadly(const std::string& path, const Behaviour& behaviour,
                            httplib::Response& response) {
  switch (behaviour.kind) {
    case Kind::kStatus: response.status = behaviour.number; return true;
    case Kind::kRedirect: response.set_redirect(behaviour.location); return true;
    case Kind::kPage: response.set_content(kPage, "text/html"); return true;
    case Kind::kEndless: response.set_chunked_content_provider(kXml, WriteSpaces); return true;
    case Kind::kHold: WaitWhile(path, Kind::kHold); return false;
    case Kind::kDelay:
      WaitWhile(path, Kind::kDelay, std::chrono::seconds(behaviour.number));
      return false;
    default: return false;
  }
}

void LogServer::Answer(const httplib::Request& request, httplib::Response& response) {
  if (request.method != "GET" && request.method != "HEAD") {
    response.status = 405;
    return;
  }
  if (HoldsNul(request)) {
    response.status = 400;
    return;
  }
  const Behaviour behaviour = Arrive(request);
  if (!IsAuthorized(request)) {
    response.status = 401;
    response.set_header("WWW-Authenticate", "Basic realm=\"call logs\"");
  } else if (!AnswerBadly(request.path, behaviour, response)) {
    Send(request.path, behaviour.kind, response);
  }
}

}  // namespace desk
