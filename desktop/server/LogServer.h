// A small call log server on 127.0.0.1, for a desk without a real one and for tests. It serves a
// directory of documents and can be told to answer badly.
#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace httplib {
class Server;
struct Request;
struct Response;
}  // namespace httplib

namespace desk {

// What a path answers with.
struct Behaviour {
  enum class Kind {
    kDocument,
    kHold,      // nothing until the path behaves otherwise
    kDelay,     // the document, `number` seconds later
    kStall,     // half of the document; the rest when the path behaves otherwise
    kCut,       // half of the document, then the connection is closed
    kEndless,   // a body without length or end
    kPage,      // an HTML page with status 200
    kStatus,    // the status `number`
    kRedirect,  // a redirect to `location`
  };

  Kind kind = Kind::kDocument;
  int number = 0;
  std::string location;
};

// "document", "hold", "delay:SECONDS", "stall", "cut", "endless", "page", a status from 400 to 599
// such as "404", or "redirect:URL". Throws std::invalid_argument for anything else.
Behaviour ParseBehaviour(const std::string& text);

class ServedDocument;

class LogServer {
 public:
  struct Settings {
    std::filesystem::path directory;  // its regular files; links in it are not followed
    std::string user;                 // empty: anybody
    std::string password;
    int port = 0;  // 0: any free one
  };

  explicit LogServer(Settings settings);
  ~LogServer();  // stops it
  LogServer(const LogServer&) = delete;
  LogServer& operator=(const LogServer&) = delete;

  // Serves on a thread of its own. Throws std::runtime_error when it cannot.
  void Start();
  void Stop();
  int port() const { return port_; }
  std::vector<std::string> Documents() const;  // their names, in order
  // A path that ends in a document's name, with or without ".xml"; "/" has the list of them.
  bool Has(const std::string& path) const;

  // All of these from any thread; a path begins with "/" and has no query.
  void Misbehave(const std::string& path, const Behaviour& behaviour);
  int Requests(const std::string& path);
  // The name that the path was asked for last; empty when it was asked for none.
  std::string AskedName(const std::string& path);
  // Until so many have arrived in all; false when that takes too long.
  bool WaitForRequests(const std::string& path, int count);

 private:
  struct Path {
    Behaviour behaviour;
    int requests = 0;
    std::string askedName;
  };

  void Bind();
  void Answer(const httplib::Request& request, httplib::Response& response);
  // False when the document is to follow.
  bool AnswerBadly(const std::string& path, const Behaviour& behaviour,
                   httplib::Response& response);
  void Send(const std::string& path, Behaviour::Kind kind, httplib::Response& response);
  bool IsAuthorized(const httplib::Request& request) const;
  Behaviour Arrive(const httplib::Request& request);
  // As long as the path behaves like this and the server runs.
  void WaitWhile(const std::string& path, Behaviour::Kind kind,
                 std::chrono::seconds limit = std::chrono::hours(24));
  void SendList(httplib::Response& response) const;
  // The document named like the last part of the path, with or without ".xml"; null for none.
  std::shared_ptr<const ServedDocument> FindDocument(const std::string& path) const;

  const Settings settings_;
  int port_ = 0;
  std::unique_ptr<httplib::Server> server_;
  std::thread thread_;

  std::mutex mutex_;  // guards what follows
  std::condition_variable changed_;
  std::map<std::string, Path> paths_;
  bool stopping_ = false;
};

}  // namespace desk
