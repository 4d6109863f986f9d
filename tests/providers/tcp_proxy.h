// A port of this machine between a test and a server, which can be told to go silent or to cut.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace zrqrybld::test {

class TcpProxy {
 public:
  enum class Mode { Pass, Silent, Cut };

  /// Passes everything on to the port, or to nobody when it is 0: then it takes connections and never says anything.
  explicit TcpProxy(int serverPort) : serverPort_(serverPort), listener_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
    listen(listener_, 8);
    thread_ = std::thread([this] { Serve(); });
  }
  TcpProxy(const TcpProxy&) = delete;
  TcpProxy& operator=(const TcpProxy&) = delete;
  ~TcpProxy() {
    ended_ = true;
    thread_.join();
    close(listener_);
  }

  int Port() const { return port_; }
  /// `after` further bytes of the server's are still passed on.
  void Set(Mode mode, long after = 0) {
    left_ = after;
    mode_ = mode;
  }

 private:
  struct Pair {
    int client;
    int server;  // -1 for none
  };

  static sockaddr_in Loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
  }

  void Accept() {
    Pair pair{accept(listener_, nullptr, nullptr), -1};
    if (serverPort_ != 0) {
      pair.server = socket(AF_INET, SOCK_STREAM, 0);
      const sockaddr_in address = Loopback(serverPort_);
      connect(pair.server, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }
    pairs_.push_back(pair);
  }

  static bool Ready(int handle) {
    pollfd one{handle, POLLIN, 0};
    return handle >= 0 && poll(&one, 1, 0) > 0;
  }

  // False when the connection is over.
  bool Move(const Pair& pair, bool toServer) {
    char bytes[4096];
    const int from = toServer ? pair.client : pair.server;
    if (!Ready(from)) return true;
    const ssize_t count = recv(from, bytes, sizeof bytes, 0);
    if (count <= 0) return false;
    const bool counts = !toServer && mode_ != Mode::Pass;
    const ssize_t passed = counts ? std::min<ssize_t>(count, left_) : count;
    if (counts) left_ -= passed;
    const int to = toServer ? pair.server : pair.client;
    if (to >= 0 && passed > 0) send(to, bytes, static_cast<std::size_t>(passed), MSG_NOSIGNAL);
    return !(counts && mode_ == Mode::Cut && left_ <= 0);
  }

  void Serve() {
    while (!ended_) {
      pollfd waiting{listener_, POLLIN, 0};
      if (poll(&waiting, 1, 1) > 0) Accept();
      std::erase_if(pairs_, [this](const Pair& pair) {
        if (Move(pair, true) && Move(pair, false)) return false;
        Close(pair);
        return true;
      });
    }
    for (const Pair& pair : pairs_) Close(pair);
  }

  static void Close(const Pair& pair) {
    close(pair.client);
    if (pair.server >= 0) close(pair.server);
  }

  int serverPort_;
  int listener_;
  int port_ = 0;
  std::vector<Pair> pairs_;
  std::atomic<Mode> mode_ = Mode::Pass;
  std::atomic<long> left_ = 0;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

}  // namespace zrqrybld::test
