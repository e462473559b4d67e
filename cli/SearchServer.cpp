// tarvos-searchd: our small search server for standard numbers and the values
// clauses of standards require. It loads the tables of
// "<data>/Data/Standards/" (see utility/SearchIndex.h) and answers one query
// per connection (protocol in utility/SearchClient.h). Logs go to standard
// error only; SIGINT or SIGTERM stop it.
#include <CLI/CLI.hpp>
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>
#include <mutex>
#include <thread>

#include "cli/DataDir.h"
#include "utility/ErrorLog.h"
#include "utility/SearchIndex.h"

namespace {

volatile sig_atomic_t g_bStop = 0;  // set by SIGINT and SIGTERM

void OnStopSignal(int) { g_bStop = 1; }

std::mutex g_mutexLog;  // one log line at a time

void Log(const std::string& sLine) {
  char szTime[32];
  time_t now = time(nullptr);
  struct tm tmNow;
  strftime(szTime, sizeof szTime, "%Y-%m-%d %H:%M:%S", localtime_r(&now, &tmNow));
  std::lock_guard<std::mutex> lock(g_mutexLog);
  std::cerr << "[" << szTime << "] tarvos-searchd: " << sLine << std::endl;
}

// The numeric address of a socket's peer or own end: "host:port".
std::string Address(const sockaddr_storage& addr) {
  char szHost[NI_MAXHOST], szPort[NI_MAXSERV];
  if (getnameinfo(reinterpret_cast<const sockaddr*>(&addr), sizeof addr, szHost, sizeof szHost, szPort,
                  sizeof szPort, NI_NUMERICHOST | NI_NUMERICSERV) != 0)
    return "?";
  return SearchAddress(szHost, atoi(szPort));
}

// Opens a listening socket on sHost:nPort (port 0: one the system picks).
// -1 with sError on failure.
int Listen(const std::string& sHost, int nPort, std::string& sError) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  addrinfo* pList = nullptr;
  int nGai = getaddrinfo(sHost.c_str(), std::to_string(nPort).c_str(), &hints, &pList);
  if (nGai != 0) {
    sError = std::string("cannot resolve ") + sHost + ": " + gai_strerror(nGai);
    return -1;
  }
  int fd = -1;
  for (const addrinfo* p = pList; p && fd < 0; p = p->ai_next) {
    fd = socket(p->ai_family, p->ai_socktype | SOCK_CLOEXEC, p->ai_protocol);
    if (fd < 0) continue;
    int nOn = 1;
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &nOn, sizeof nOn);
    if (bind(fd, p->ai_addr, p->ai_addrlen) != 0 || listen(fd, 64) != 0) {
      sError = "cannot listen on " + SearchAddress(sHost, nPort) + ": " + strerror(errno);
      close(fd);
      fd = -1;
    }
  }
  freeaddrinfo(pList);
  return fd;
}

// Counts the connections being served and lets the accepting loop wait for
// a free slot.
class CSlots {
 public:
  explicit CSlots(int nMax) : m_nMax(nMax) {}
  // Waits up to nMs for a free slot; true when one was taken.
  bool Take(int nMs) {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!m_cond.wait_for(lock, std::chrono::milliseconds(nMs), [&] { return m_nBusy < m_nMax; })) return false;
    ++m_nBusy;
    return true;
  }
  void Give() {
    std::lock_guard<std::mutex> lock(m_mutex);
    --m_nBusy;
    m_cond.notify_all();
  }
  // Waits up to nMs until no connection is served; false when some still are.
  bool Drain(int nMs) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_cond.wait_for(lock, std::chrono::milliseconds(nMs), [&] { return m_nBusy == 0; });
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_cond;
  int m_nMax;       // most connections served at once
  int m_nBusy = 0;  // connections being served
};

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"tarvos-searchd answers look-ups of standards and required values over TCP."};
  app.set_version_flag("--version", std::string("tarvos-searchd ") + TARVOS_VERSION);
  std::string sData, sHost = "127.0.0.1";
  int nPort = -1, nThreads = 16, nTimeoutMs = 5000;
  app.add_option("--data", sData, "data directory (default: $TARVOS_DATA, else the built or installed one)");
  app.add_option("--port", nPort, "TCP port; 0 lets the system pick one (printed at start)")
      ->required()
      ->check(CLI::Range(0, 65535));
  app.add_option("--host", sHost, "address to listen on (default 127.0.0.1)");
  app.add_option("--threads", nThreads, "most connections served at once (default 16)")->check(CLI::Range(1, 256));
  app.add_option("--timeout", nTimeoutMs, "milliseconds a client has to send its query and to take the answer")
      ->check(CLI::Range(10, 600000));
  CLI11_PARSE(app, argc, argv);

  sData = ChooseDataDir(sData);
  CSearchIndex index;
  if (!index.Load(sData)) {
    std::cerr << "tarvos-searchd: " << GetLastError() << "\n";
    return 1;
  }
  std::string sError;
  int fdListen = Listen(sHost, nPort, sError);
  if (fdListen < 0) {
    std::cerr << "tarvos-searchd: " << sError << "\n";
    return 1;
  }
  sockaddr_storage local{};
  socklen_t nLocal = sizeof local;
  getsockname(fdListen, reinterpret_cast<sockaddr*>(&local), &nLocal);

  struct sigaction action {};
  action.sa_handler = OnStopSignal;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  signal(SIGPIPE, SIG_IGN);

  Log(std::to_string(index.GetStandardCount()) + " standards, " + std::to_string(index.GetRequirementCount()) +
      " required values from " + sData + "; listening on " + Address(local));

  CSlots slots(nThreads);
  while (!g_bStop) {
    // Short waits, so that a stop signal is seen soon.
    if (!slots.Take(200)) continue;
    pollfd pfd{fdListen, POLLIN, 0};
    if (poll(&pfd, 1, 200) <= 0) {
      slots.Give();
      continue;
    }
    sockaddr_storage peer{};
    socklen_t nPeer = sizeof peer;
    int fd = accept4(fdListen, reinterpret_cast<sockaddr*>(&peer), &nPeer, SOCK_CLOEXEC);
    if (fd < 0) {
      slots.Give();
      if (errno != EINTR && errno != EAGAIN && errno != ECONNABORTED) Log(std::string("accept: ") + strerror(errno));
      continue;
    }
    std::thread([&index, &slots, fd, peer, nTimeoutMs] {
      std::string sLog;
      ServeSearchConnection(index, fd, nTimeoutMs, sLog);
      close(fd);
      Log(Address(peer) + " " + sLog);
      slots.Give();
    }).detach();
  }
  close(fdListen);
  // Connections in progress end within their two time-outs.
  if (!slots.Drain(2 * nTimeoutMs + 1000)) {
    // A connection thread still uses the index: leave without destroying it.
    Log("stopped with connections still open");
    std::_Exit(0);
  }
  Log("stopped");
  return 0;
}
