#include "utility/SearchClient.h"

#include <errno.h>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstring>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/XmlScan.h"

namespace {

using Clock = std::chrono::steady_clock;

// Closes a socket when it goes out of scope.
class CSocket {
 public:
  explicit CSocket(int fd) : m_fd(fd) {}
  ~CSocket() {
    if (m_fd >= 0) close(m_fd);
  }
  CSocket(const CSocket&) = delete;
  CSocket& operator=(const CSocket&) = delete;
  int Get() const { return m_fd; }
  void Reset(int fd) {
    if (m_fd >= 0) close(m_fd);
    m_fd = fd;
  }
  // Gives up ownership of the descriptor and returns it.
  int Release() {
    int fd = m_fd;
    m_fd = -1;
    return fd;
  }

 private:
  int m_fd;  // owned descriptor, -1 for none
};

int MillisecondsLeft(SearchDeadline deadline) {
  auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return left <= 0 ? 0 : left > 60 * 60 * 1000 ? 60 * 60 * 1000 : (int)left;
}

tstring Trim(const tstring& sText) {
  const char* kBlanks = " \t\r\n";
  size_t nStart = sText.find_first_not_of(kBlanks);
  if (nStart == tstring::npos) return "";
  return sText.substr(nStart, sText.find_last_not_of(kBlanks) - nStart + 1);
}

// A port 1..65535 written in decimal digits only; 0 otherwise.
int ParsePort(const tstring& sText) {
  if (sText.empty() || sText.size() > 5 || sText.find_first_not_of("0123456789") != tstring::npos) return 0;
  int nPort = ToInt(sText);
  return nPort >= 1 && nPort <= 65535 ? nPort : 0;
}

// Connects to one resolved address before the deadline; the socket, or -1
// with nError set.
int ConnectOne(const addrinfo* pAddr, SearchDeadline deadline, int& nError) {
  int fd = socket(pAddr->ai_family, pAddr->ai_socktype | SOCK_CLOEXEC, pAddr->ai_protocol);
  if (fd < 0) {
    nError = errno;
    return -1;
  }
  CSocket sock(fd);
  if (!SetNonBlocking(fd)) {
    nError = errno;
    return -1;
  }
  if (connect(fd, pAddr->ai_addr, pAddr->ai_addrlen) != 0) {
    if (errno != EINPROGRESS) {
      nError = errno;
      return -1;
    }
    ESocketWait eWait = WaitSocket(fd, POLLOUT, deadline);
    if (eWait != kSocketReady) {
      nError = eWait == kSocketTimedOut ? ETIMEDOUT : errno;
      return -1;
    }
    int nSoError = 0;
    socklen_t nLen = sizeof nSoError;
    if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &nSoError, &nLen) != 0 || nSoError != 0) {
      nError = nSoError ? nSoError : errno;
      return -1;
    }
  }
  return sock.Release();
}

// The name of the element that starts at p ("<name>" or "<name/>"), its end
// in pAfterTag; "" when p does not start an opening tag.
tstring OpeningTag(const char* p, const char* pEnd, const char*& pAfterTag, bool& bEmpty) {
  const char* q = p + 1;
  while (q < pEnd && *q != '>' && *q != '/' && *q != ' ' && *q != '\t' && *q != '\r' && *q != '\n') ++q;
  if (q == p + 1 || q >= pEnd || *p != '<' || p[1] == '/' || p[1] == '?' || p[1] == '!') return "";
  const char* pClose = static_cast<const char*>(memchr(q, '>', (size_t)(pEnd - q)));
  if (pClose == nullptr) return "";
  bEmpty = pClose > p && pClose[-1] == '/';
  pAfterTag = pClose + 1;
  return tstring(p + 1, q);
}

// The fields of one record's text [p, pEnd): each child element once, the
// first occurrence winning; an unclosed child ends the record.
SearchRecord ParseRecord(const char* p, const char* pEnd) {
  SearchRecord record;
  for (const char* q = static_cast<const char*>(memchr(p, '<', (size_t)(pEnd - p))); q;) {
    const char* pAfterTag = nullptr;
    bool bEmpty = false;
    tstring sName = OpeningTag(q, pEnd, pAfterTag, bEmpty);
    const char* pNext = q + 1;
    if (!sName.empty()) {
      if (bEmpty) {
        record.emplace(sName, "");
        pNext = pAfterTag;
      } else {
        const tstring sClose = "</" + sName + ">";
        const char* pClose = FindIn(pAfterTag, pEnd, sClose.c_str());
        if (pClose == nullptr) break;
        record.emplace(sName, DecodeEntities(pAfterTag, pClose));
        pNext = pClose + sClose.size();
      }
    }
    if (pNext >= pEnd) break;
    q = static_cast<const char*>(memchr(pNext, '<', (size_t)(pEnd - pNext)));
  }
  return record;
}

// True when the answer so far holds its end: "</records>" or "<records/>".
// Only the tail after nFrom (less the tag's length) is searched again.
bool AnswerComplete(const tstring& sAnswer, size_t nFrom) {
  size_t nStart = nFrom > 16 ? nFrom - 16 : 0;
  return sAnswer.find("</records>", nStart) != tstring::npos || sAnswer.find("<records/>", nStart) != tstring::npos;
}

}  // namespace

ESocketWait WaitSocket(int fd, short nEvents, SearchDeadline deadline) {
  for (;;) {
    pollfd pfd{fd, nEvents, 0};
    int nLeft = MillisecondsLeft(deadline);
    int n = poll(&pfd, 1, nLeft);
    if (n > 0) return kSocketReady;
    if (n == 0) {
      // poll may wake a little early; only a passed deadline is a time-out.
      if (MillisecondsLeft(deadline) == 0) return kSocketTimedOut;
      continue;
    }
    if (errno != EINTR) return kSocketFailed;
  }
}

bool SendBefore(int fd, const char* p, size_t nLength, SearchDeadline deadline, bool& bTimedOut) {
  bTimedOut = false;
  while (nLength > 0) {
    ssize_t n = send(fd, p, nLength, MSG_NOSIGNAL);
    if (n > 0) {
      p += n;
      nLength -= (size_t)n;
      continue;
    }
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      ESocketWait eWait = WaitSocket(fd, POLLOUT, deadline);
      if (eWait == kSocketReady) continue;
      bTimedOut = eWait == kSocketTimedOut;
    }
    return false;
  }
  return true;
}

bool SetNonBlocking(int fd) {
  int nFlags = fcntl(fd, F_GETFL, 0);
  return nFlags >= 0 && fcntl(fd, F_SETFL, nFlags | O_NONBLOCK) == 0;
}

tstring SearchAddress(const tstring& sHost, int nPort) {
  const bool bV6 = sHost.find(':') != tstring::npos;
  return (bV6 ? "[" + sHost + "]" : sHost) + ":" + std::to_string(nPort);
}

bool CSearchClient::Load(const tstring& sDataDir) {
  const tstring sPath = sDataDir + "/Data/" + kSearchAgentFile;
  tstring sXml;
  if (!ReadFileText(sPath, sXml)) {
    SetLastError("Failed reading file " + sPath);
    return false;
  }
  const char* p = sXml.data();
  const char* pEnd = p + sXml.size();
  struct {
    const char* szHost;
    const char* szPort;
    tstring& sHost;
    int& nPort;
  } kServers[] = {
      {"TiaowenServerIP", "TiaowenPort", m_sTiaowenHost, m_nTiaowenPort},
      {"ArgumentServerIP", "ArgumentPort", m_sArgumentHost, m_nArgumentPort},
  };
  for (auto& server : kServers) {
    tstring sHost, sPort;
    if (!ElementText(p, pEnd, server.szHost, sHost, kOpenIsMissing) ||
        (sHost = Trim(DecodeEntities(sHost))).empty()) {
      SetLastError(sPath + ": no server address in <" + server.szHost + ">");
      return false;
    }
    ElementText(p, pEnd, server.szPort, sPort, kOpenIsMissing);
    int nPort = ParsePort(Trim(sPort));
    if (nPort == 0) {
      SetLastError(sPath + ": <" + server.szPort + "> is not a port number from 1 to 65535");
      return false;
    }
    server.sHost = sHost;
    server.nPort = nPort;
  }
  return true;
}

tstring CSearchClient::StandardQuery(const tstring& sName) { return "[field] Safety_Tiaowen [whole] " + sName; }

tstring CSearchClient::ArgumentQuery(const tstring& sFileName, const tstring& sClause) {
  return "[field] file_name [and] " + sFileName + " [field] section_no [whole] " + sClause;
}

bool CSearchClient::QueryStandard(const tstring& sName, std::vector<SearchRecord>& vecRecords) const {
  return Query(m_sTiaowenHost, m_nTiaowenPort, StandardQuery(sName), vecRecords);
}

bool CSearchClient::QueryArgument(const tstring& sFileName, const tstring& sClause,
                                  std::vector<SearchRecord>& vecRecords) const {
  return Query(m_sArgumentHost, m_nArgumentPort, ArgumentQuery(sFileName, sClause), vecRecords);
}

int CSearchClient::ParseAnswer(const tstring& sAnswer, std::vector<SearchRecord>& vecRecords, tstring& sError) {
  vecRecords.clear();
  sError.clear();
  const char* p = sAnswer.data();
  const char* pEnd = p + sAnswer.size();
  if (FindIn(p, pEnd, "<records/>")) return 1;
  tstring sBody;
  if (!ElementText(p, pEnd, "records", sBody, kOpenIsMissing)) {
    sError = FindIn(p, pEnd, "<records>") ? "gave an incomplete answer (no </records>)" : "gave no <records> answer";
    return -1;
  }
  const char* pBody = sBody.data();
  const char* pBodyEnd = pBody + sBody.size();
  tstring sServerError;
  if (ElementText(pBody, pBodyEnd, "error", sServerError, kOpenRunsToEnd)) {
    sError = DecodeEntities(sServerError);
    return 0;
  }
  ForEachElement(pBody, pBodyEnd, "record",
                 [&](const char* pStart, const char* pStop) { vecRecords.push_back(ParseRecord(pStart, pStop)); });
  return 1;
}

bool CSearchClient::Query(const tstring& sHost, int nPort, const tstring& sQuery,
                          std::vector<SearchRecord>& vecRecords) const {
  vecRecords.clear();
  const tstring sAddress = SearchAddress(sHost, nPort);
  const tstring sServer = "Search server @" + sAddress;
  if (sQuery.size() + 1 > kMaxSearchQuery) {
    SetLastError("Search query longer than " + std::to_string(kMaxSearchQuery - 1) + " bytes, not sent to @" +
                 sAddress);
    return false;
  }
  // One line per query: a line break inside would end it early.
  tstring sLine = sQuery;
  for (char& c : sLine)
    if (c == '\r' || c == '\n' || c == '\0') c = ' ';
  sLine += '\n';

  const tstring sCannot = "Cannot connect server @" + sAddress;
  if (sHost.empty() || nPort < 1 || nPort > 65535) {
    SetLastError(sCannot + ": no such address");
    return false;
  }
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV;
  addrinfo* pList = nullptr;
  int nGai = getaddrinfo(sHost.c_str(), std::to_string(nPort).c_str(), &hints, &pList);
  if (nGai != 0) {
    SetLastError(sCannot + ": " + gai_strerror(nGai));
    return false;
  }
  // Every address of the name shares one connect time-out.
  const SearchDeadline connectBy = Clock::now() + std::chrono::milliseconds(m_nConnectTimeoutMs);
  int nError = 0;
  CSocket sock(-1);
  for (const addrinfo* pAddr = pList; pAddr && sock.Get() < 0; pAddr = pAddr->ai_next)
    sock.Reset(ConnectOne(pAddr, connectBy, nError));
  freeaddrinfo(pList);
  if (sock.Get() < 0) {
    SetLastError(sCannot + ": " +
                 (nError == ETIMEDOUT ? "no connection within " + std::to_string(m_nConnectTimeoutMs) + " ms"
                                      : tstring(strerror(nError))));
    return false;
  }

  const SearchDeadline answerBy = Clock::now() + std::chrono::milliseconds(m_nReadTimeoutMs);
  const tstring sTimedOut = sServer + " timed out: no complete answer within " + std::to_string(m_nReadTimeoutMs) + " ms";
  bool bTimedOut = false;
  if (!SendBefore(sock.Get(), sLine.data(), sLine.size(), answerBy, bTimedOut)) {
    SetLastError(bTimedOut ? sTimedOut : sServer + " closed the connection before the query was sent");
    return false;
  }
  shutdown(sock.Get(), SHUT_WR);

  tstring sAnswer;
  char buffer[65536];
  for (bool bDone = false; !bDone;) {
    ESocketWait eWait = WaitSocket(sock.Get(), POLLIN, answerBy);
    if (eWait == kSocketTimedOut) {
      SetLastError(sTimedOut);
      return false;
    }
    if (eWait == kSocketFailed) {
      SetLastError(sServer + ": " + strerror(errno));
      return false;
    }
    ssize_t n = recv(sock.Get(), buffer, sizeof buffer, 0);
    if (n < 0) {
      if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK) continue;
      SetLastError(sServer + ": " + strerror(errno));
      return false;
    }
    if (n == 0) break;
    if (sAnswer.size() + (size_t)n > m_nMaxAnswer) {
      SetLastError(sServer + " sent more than " + std::to_string(m_nMaxAnswer) + " bytes; answer cut off");
      return false;
    }
    const size_t nFrom = sAnswer.size();
    sAnswer.append(buffer, (size_t)n);
    bDone = AnswerComplete(sAnswer, nFrom);
  }

  tstring sError;
  int nParsed = ParseAnswer(sAnswer, vecRecords, sError);
  if (nParsed < 1) {
    SetLastError(sServer + (nParsed == 0 ? ": " : " ") + sError);
    return false;
  }
  return true;
}
