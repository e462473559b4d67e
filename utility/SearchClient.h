#pragma once
// The client of the search server that the standard and clause look-ups ask
// (the server is tarvos-searchd, cli/SearchServer.cpp, over CSearchIndex).
//
// Settings: "SearchAgent.xml" in the data directory's "Data/" folder, UTF-8:
//
//   <SearchAgent>
//     <TiaowenServerIP>127.0.0.1</TiaowenServerIP>   server of the standards
//     <TiaowenPort>7307</TiaowenPort>
//     <ArgumentServerIP>127.0.0.1</ArgumentServerIP> server of required values
//     <ArgumentPort>7307</ArgumentPort>
//   </SearchAgent>
//
// Hosts are names or numeric IPv4/IPv6 addresses (without brackets); ports
// are 1 to 65535. Nothing else is read from the file.
//
// Protocol (TCP, one exchange per connection):
//  1. The client connects and sends the query as one UTF-8 line ending in
//     "\n" (at most kMaxSearchQuery bytes with the "\n"; CR, LF and NUL
//     inside the query are sent as blanks), then closes its sending side.
//  2. The server answers with UTF-8 XML and closes the connection:
//       <records>
//       <record><Safety_Tiaowenhao>GB 50014-2021</Safety_Tiaowenhao>...</record>
//       ...
//       </records>
//     Each child of a <record> is one field; its text is XML-escaped ("&lt;",
//     "&amp;" ...). A query the server cannot run gets
//       <records><error>reason</error></records>
//     and no records. An answer without records is "<records>\r\n</records>".
//  3. The client stops reading at "</records>" or when the server closes.
//
// Limits: connecting (name look-up excepted) may take the connect time-out;
// sending the query and reading the whole answer together the read time-out;
// an answer longer than the answer cap is cut off and the query fails. A
// slow or hostile server therefore costs at most the two time-outs.
//
// Thread safety: Query is const and keeps no state between calls, so one
// loaded client may serve many threads at once. Failures set the last-error
// text (utility/ErrorLog.h), which each thread can read as its own.
#include <chrono>
#include <cstddef>
#include <map>
#include <vector>

#include "utility/TString.h"

// The file name of the settings, inside "<data>/Data/".
inline constexpr const char* kSearchAgentFile = "SearchAgent.xml";
// The longest query line, "\n" included.
inline constexpr size_t kMaxSearchQuery = 8192;
// The default answer cap: 4 MiB.
inline constexpr size_t kDefaultMaxSearchAnswer = 4u << 20;

// One answer record: field name to decoded text.
typedef std::map<tstring, tstring> SearchRecord;

class CSearchClient {
 public:
  CSearchClient() = default;

  // Reads sDataDir + "/Data/SearchAgent.xml". False on failure, with the last
  // error "Failed reading file " + path when the file cannot be read, or
  // naming the setting that is missing or not valid.
  bool Load(const tstring& sDataDir);

  // The settings read by Load (empty and 0 before).
  const tstring& TiaowenHost() const { return m_sTiaowenHost; }
  int TiaowenPort() const { return m_nTiaowenPort; }
  const tstring& ArgumentHost() const { return m_sArgumentHost; }
  int ArgumentPort() const { return m_nArgumentPort; }

  // Time limits in milliseconds (values below 1 count as 1) and the answer
  // cap in bytes. Set them before the client is shared between threads.
  void SetConnectTimeout(int nMilliseconds) { m_nConnectTimeoutMs = nMilliseconds < 1 ? 1 : nMilliseconds; }
  void SetReadTimeout(int nMilliseconds) { m_nReadTimeoutMs = nMilliseconds < 1 ? 1 : nMilliseconds; }
  void SetMaxAnswerBytes(size_t nBytes) { m_nMaxAnswer = nBytes; }
  int GetConnectTimeout() const { return m_nConnectTimeoutMs; }
  int GetReadTimeout() const { return m_nReadTimeoutMs; }

  // Sends sQuery to sHost:nPort and fills vecRecords (cleared first) with the
  // answer's records in order. False on failure, with the last error:
  //   "Cannot connect server @host:port" (+ ": reason") when no connection
  //   was made within the connect time-out;
  //   "Search server @host:port timed out ..." when the answer was not
  //   complete within the read time-out;
  //   "Search server @host:port sent more than N bytes ..." for an answer
  //   beyond the cap;
  //   "Search server @host:port: " + the server's <error> text;
  //   other "Search server @host:port ..." texts for broken answers, and
  //   "Search query ..." for a query that is too long.
  bool Query(const tstring& sHost, int nPort, const tstring& sQuery, std::vector<SearchRecord>& vecRecords) const;

  // The look-ups of the two checks, on the servers of the settings.
  bool QueryStandard(const tstring& sName, std::vector<SearchRecord>& vecRecords) const;
  bool QueryArgument(const tstring& sFileName, const tstring& sClause, std::vector<SearchRecord>& vecRecords) const;

  // The query texts of those look-ups.
  static tstring StandardQuery(const tstring& sName);
  static tstring ArgumentQuery(const tstring& sFileName, const tstring& sClause);

  // The records of an answer text (vecRecords cleared first): 1 when read;
  // 0 when the answer is the server's <error>, its text in sError; -1 when
  // it is not a whole "<records>" element, sError saying so.
  static int ParseAnswer(const tstring& sAnswer, std::vector<SearchRecord>& vecRecords, tstring& sError);

 private:
  tstring m_sTiaowenHost;                         // server of the standards
  int m_nTiaowenPort = 0;                         // its port
  tstring m_sArgumentHost;                        // server of the required values
  int m_nArgumentPort = 0;                        // its port
  int m_nConnectTimeoutMs = 2000;                 // longest wait for a connection
  int m_nReadTimeoutMs = 3000;                    // longest wait for the whole answer
  size_t m_nMaxAnswer = kDefaultMaxSearchAnswer;  // answer cap in bytes
};

// Socket helpers shared by the client and the server's connection handler
// (utility/SearchIndex.cpp). Sockets are non-blocking; time is a deadline.
typedef std::chrono::steady_clock::time_point SearchDeadline;

enum ESocketWait {
  kSocketReady,     // the events arrived (or the peer closed or failed)
  kSocketTimedOut,  // the deadline passed first
  kSocketFailed,    // poll itself failed
};

// Waits until fd has one of nEvents (POLLIN, POLLOUT), the deadline passes
// or poll fails. Interrupted waits resume.
ESocketWait WaitSocket(int fd, short nEvents, SearchDeadline deadline);

// Sends all of [p, p + nLength) before the deadline, never raising SIGPIPE.
// False when the peer is gone or the deadline passed (bTimedOut tells which).
bool SendBefore(int fd, const char* p, size_t nLength, SearchDeadline deadline, bool& bTimedOut);

// Makes fd non-blocking; false when fcntl fails.
bool SetNonBlocking(int fd);

// "host:port", with brackets around an IPv6 host: "[::1]:7307".
tstring SearchAddress(const tstring& sHost, int nPort);
