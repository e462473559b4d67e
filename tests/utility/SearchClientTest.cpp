// The search client against the search server's engine and against test
// servers that answer slowly, too much, or wrongly; all on loopback ports
// the system picks.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "TestDataDir.h"
#include "utility/ErrorLog.h"
#include "utility/SearchClient.h"
#include "utility/SearchIndex.h"

namespace {

using Clock = std::chrono::steady_clock;

long MillisecondsSince(Clock::time_point start) {
  return (long)std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// A loopback socket bound to a port the system picks; listening when asked.
int BoundSocket(bool bListen, int& nPort) {
  int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t nLen = sizeof addr;
  if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 || (bListen && listen(fd, 16) != 0) ||
      getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &nLen) != 0) {
    if (fd >= 0) close(fd);
    nPort = 0;
    return -1;
  }
  nPort = ntohs(addr.sin_port);
  return fd;
}

// A server thread that hands each accepted connection (blocking) to fnServe,
// one after the other, and closes it afterwards.
class CLoopbackServer {
 public:
  explicit CLoopbackServer(std::function<void(int)> fnServe) : m_fnServe(std::move(fnServe)) {
    m_fd = BoundSocket(true, m_nPort);
    if (m_fd >= 0) m_thread = std::thread([this] { Run(); });
  }
  ~CLoopbackServer() {
    m_bStop = true;
    if (m_thread.joinable()) m_thread.join();
    if (m_fd >= 0) close(m_fd);
  }
  CLoopbackServer(const CLoopbackServer&) = delete;
  CLoopbackServer& operator=(const CLoopbackServer&) = delete;
  int Port() const { return m_nPort; }

 private:
  void Run() {
    while (!m_bStop) {
      pollfd pfd{m_fd, POLLIN, 0};
      if (poll(&pfd, 1, 20) <= 0) continue;
      int fd = accept(m_fd, nullptr, nullptr);
      if (fd < 0) continue;
      m_fnServe(fd);
      close(fd);
    }
  }
  std::function<void(int)> m_fnServe;  // serves one connection
  int m_fd = -1;                       // listening socket
  int m_nPort = 0;                     // its port
  std::atomic<bool> m_bStop{false};    // asks the thread to end
  std::thread m_thread;                // the accepting thread
};

// Reads the query line of a connection (blocking, as the test servers are).
std::string ReadLine(int fd) {
  std::string sLine;
  char c;
  while (recv(fd, &c, 1, 0) == 1 && c != '\n') sLine += c;
  return sLine;
}

// Waits until bDone is set, at most nMs. (The client half-closes after its
// query, so the socket cannot tell when it has given up.)
void WaitUntil(const std::atomic<bool>& bDone, int nMs) {
  for (auto start = Clock::now(); !bDone && MillisecondsSince(start) < nMs;)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

void SendText(int fd, const std::string& sText) { send(fd, sText.data(), sText.size(), MSG_NOSIGNAL); }

const char kStandards[] =
    "# number\tname\tdate\tstatus\treplaced by\tmemo\n"
    "GB 50014-2021\t室外排水设计标准\t2021-04-09\t现行\t\t实施日期 2021-10-01\n"
    "GB 50014-2006\t室外排水设计规范\t2006-01-18\t被代替\tGB 50014-2021\t2016年版\r\n"
    "\n"
    "GB/T 14848-93\t地下水质量标准\t1993-12-30\t被代替\tGB/T 14848-2017\n"
    "GB/T 14848-2017\t地下水质量标准\t2017-10-14\t现行\n"
    "GB 36600-2018\t土壤环境质量 建设用地土壤污染风险管控标准（试行）\t2018-06-22\t现行\n"
    "GB 50045-95\t高层民用建筑设计防火规范\t\t废止\tGB 50016-2014\n";

const char kRequirements[] =
    "GB 50014-2021\t4.1.15\t平均日流量 5 L/s\t综合生活污水量变化系数\t2.7\n"
    "GB 50014-2021\t4.1.15\t平均日流量 15 L/s\t综合生活污水量变化系数\t2.4\n"
    "GB 50014-2021\t5.2.4\t管径 200~300 mm\t最大设计充满度\t0.55\n";

// The values of one field of each record, joined with "|".
std::string Join(const std::vector<SearchRecord>& vecRecords, const char* szField) {
  std::string sJoined;
  for (size_t i = 0; i < vecRecords.size(); ++i) {
    auto it = vecRecords[i].find(szField);
    sJoined += (i ? "|" : "") + (it == vecRecords[i].end() ? std::string("?") : it->second);
  }
  return sJoined;
}

class SearchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_index.AddStandards(kStandards, "standards")) << GetLastError();
    ASSERT_TRUE(m_index.AddRequirements(kRequirements, "requirements")) << GetLastError();
  }
  CSearchIndex m_index;
};

TEST_F(SearchTest, StandardsMatchByWholeNameOrNumberInAnyWriting) {
  struct {
    const char* szName;
    const char* szWant;  // numbers found, in table order
  } kCases[] = {
      {"室外排水设计标准", "GB 50014-2021"},
      {"《室外排水设计规范》", "GB 50014-2021|GB 50014-2006"},         // book-title marks; its successor comes along
      {"地下水质量标准", "GB/T 14848-93|GB/T 14848-2017"},             // every edition of a name
      {"GB/T 14848—2017", "GB/T 14848-2017"},                          // em dash
      {"ＧＢ／Ｔ　１４８４８－２０１７", "GB/T 14848-2017"},          // full-width forms
      {"gbt14848-2017", "GB/T 14848-2017"},                            // case, blanks and "/"
      {"GB 50014", "GB 50014-2021|GB 50014-2006"},                     // a number without its year
      {"GB 50045-1995", "GB 50045-95"},                                // two-digit years (its successor is no entry here)
      {"GB 50014-2021（2016年版）", "GB 50014-2021"},                  // an edition note
      {"土壤环境质量 建设用地土壤污染风险管控标准", "GB 36600-2018"},  // without "(试行)"
      {"土壤环境质量建设用地土壤污染风险管控标准(试行)", "GB 36600-2018"},
      {"室外排水", ""},       // whole names only
      {"GB 50014-2020", ""},  // no such edition
  };
  for (const auto& c : kCases) {
    std::vector<SearchRecord> vecRecords;
    std::string sError;
    ASSERT_TRUE(m_index.Search(CSearchClient::StandardQuery(c.szName), vecRecords, sError)) << sError;
    EXPECT_EQ(Join(vecRecords, "Safety_Tiaowenhao"), c.szWant) << c.szName;
  }
}

TEST_F(SearchTest, StandardRecordsCarryDateAndMemo) {
  std::vector<SearchRecord> vecRecords;
  std::string sError;
  ASSERT_TRUE(m_index.Search(CSearchClient::StandardQuery("GB 50014"), vecRecords, sError));
  EXPECT_EQ(Join(vecRecords, "Safety_Date"), "2021-04-09|2006-01-18");
  // A standard in force carries no remark; one out of force says why.
  EXPECT_EQ(Join(vecRecords, "Memo"), "|被代替，由 GB 50014-2021 代替；2016年版");
  EXPECT_EQ(Join(vecRecords, "Replaced_By"), "|GB 50014-2021");
  ASSERT_TRUE(m_index.Search(CSearchClient::StandardQuery("GB 50045-95"), vecRecords, sError));
  EXPECT_EQ(Join(vecRecords, "Memo"), "废止，由 GB 50016-2014 代替");
  EXPECT_EQ(Join(vecRecords, "Safety_Date"), "");
}

TEST_F(SearchTest, RequiredValuesMatchByFileAndClause) {
  struct {
    const char* szQuery;
    const char* szWant;  // values found
  } kCases[] = {
      {"[field] file_name [and] GB 50014-2021 [field] section_no [whole] 4.1.15", "2.7|2.4"},
      {"[field] file_name [and] GB50014—2021 [field] section_no [whole] 第4.1.15条", "2.7|2.4"},
      {"[field] file_name [and] 室外排水设计标准 [field] section_no [whole] 5.2.4", "0.55"},  // by name
      {"[field] file_name [and] GB 50014-2006 [field] section_no [whole] 4.1.15", ""},
      {"[field] file_name [and] GB 50014-2021 [field] section_no [whole] 4.1", ""},
      {"[field] file_name [whole] GB 50014-2021", "2.7|2.4|0.55"},  // every clause
  };
  for (const auto& c : kCases) {
    std::vector<SearchRecord> vecRecords;
    std::string sError;
    ASSERT_TRUE(m_index.Search(c.szQuery, vecRecords, sError)) << c.szQuery << ": " << sError;
    EXPECT_EQ(Join(vecRecords, "value"), c.szWant) << c.szQuery;
  }
  EXPECT_EQ(CSearchClient::ArgumentQuery("GB 50014-2021", "4.1.15"),
            "[field] file_name [and] GB 50014-2021 [field] section_no [whole] 4.1.15");
  std::vector<SearchRecord> vecRecords;
  std::string sError;
  ASSERT_TRUE(m_index.Search(CSearchClient::ArgumentQuery("GB 50014-2021", "5.2.4"), vecRecords, sError));
  ASSERT_EQ(vecRecords.size(), 1u);
  EXPECT_EQ(vecRecords[0].at("row_name"), "管径 200~300 mm");
  EXPECT_EQ(vecRecords[0].at("col_name"), "最大设计充满度");
}

TEST_F(SearchTest, QueriesOutsideTheLanguageAreRefused) {
  struct {
    const char* szQuery;
    const char* szError;
  } kCases[] = {
      {"", "empty query"},
      {"   ", "empty query"},
      {"室外排水设计标准", "a query is"},
      {"GB 1 [field] Safety_Tiaowen [whole] x", "a query starts with [field]"},
      {"[whole] x", "expected [field]"},
      {"[field] Safety_Tiaowen [whole] ", "empty value for field Safety_Tiaowen"},
      {"[field] Safety_Tiaowen", "no [whole] or [and] value"},
      {"[field] Title [whole] x", "unknown field Title"},
      {"[field] section_no [whole] 4.1", "section_no needs file_name"},
      {"[field] Safety_Tiaowen [whole] a [field] file_name [and] b", "Safety_Tiaowen is searched alone"},
      {"[field] file_name [and] a [field] file_name [whole] b", "given twice"},
  };
  for (const auto& c : kCases) {
    std::vector<SearchRecord> vecRecords;
    std::string sError;
    EXPECT_FALSE(m_index.Search(c.szQuery, vecRecords, sError)) << c.szQuery;
    EXPECT_NE(sError.find(c.szError), std::string::npos) << c.szQuery << " gave: " << sError;
    EXPECT_NE(m_index.Answer(c.szQuery).find("<error>"), std::string::npos);
  }
}

TEST(SearchIndexTest, TablesWithBadLinesAreRefusedByLine) {
  struct {
    bool bStandards;
    const char* szText;
    const char* szError;
  } kCases[] = {
      {true, "GB 1-2000\t甲\t2000-01-01\t有效\n", "line 1: status is not"},
      {true, "# c\nGB 1-2000\t甲\t\t被代替\n", "line 2: 被代替 without the replacing number"},
      {true, "GB 1-2000\t甲\t\t现行\nGB 1—2000\t乙\t\t现行\n", "line 2: GB 1—2000 is listed twice"},
      {true, "GB 1-2000\n", "line 1: no number or no name"},
      {true, "a\tb\tc\t现行\te\tf\tg\n", "line 1: more than 6 columns"},
      {false, "GB 1-2000\t1.1\trow\tcol\n", "line 1: not 5 columns"},
      {false, "GB 1-2000\t1.1\t\tcol\t3\n", "line 1: an empty column"},
  };
  for (const auto& c : kCases) {
    CSearchIndex index;
    EXPECT_FALSE(c.bStandards ? index.AddStandards(c.szText, "t.txt") : index.AddRequirements(c.szText, "t.txt"));
    EXPECT_NE(GetThreadLastError().find(c.szError), std::string::npos) << c.szText << GetThreadLastError();
  }
}

TEST(SearchIndexTest, ShippedTablesLoad) {
  CSearchIndex index;
  ASSERT_TRUE(index.Load(TARVOS_TEST_DATA_DIR)) << GetLastError();
  EXPECT_GE(index.GetStandardCount(), 40u);
  EXPECT_GE(index.GetRequirementCount(), 20u);
  std::vector<SearchRecord> vecRecords;
  std::string sError;
  ASSERT_TRUE(index.Search(CSearchClient::StandardQuery("建筑给水排水设计标准"), vecRecords, sError));
  EXPECT_EQ(Join(vecRecords, "Safety_Tiaowenhao"), "GB 50015-2019");
  ASSERT_TRUE(index.Search(CSearchClient::ArgumentQuery("GB 50015-2019", "3.4.3"), vecRecords, sError));
  EXPECT_EQ(Join(vecRecords, "value"), "≤0.45|≤0.55");

  CTempDir empty;
  EXPECT_FALSE(index.Load(empty.Path()));
  EXPECT_EQ(GetThreadLastError().rfind("Failed reading file " + empty.Path() + "/Data/Standards/standards.txt", 0), 0u);
}

// The search server's own connection handler on a loopback port.
class SearchServerTest : public SearchTest {
 protected:
  void SetUp() override {
    SearchTest::SetUp();
    m_pServer = std::make_unique<CLoopbackServer>([this](int fd) {
      std::string sLog;
      ServeSearchConnection(m_index, fd, 300, sLog);
      std::lock_guard<std::mutex> lock(m_mutex);
      m_vecLog.push_back(sLog);
    });
    ASSERT_GT(m_pServer->Port(), 0);
  }
  // The server thread writes the log: it ends before the members go.
  void TearDown() override { m_pServer.reset(); }
  std::unique_ptr<CLoopbackServer> m_pServer;
  std::mutex m_mutex;
  std::vector<std::string> m_vecLog;  // the handler's log lines
};

TEST_F(SearchServerTest, ClientGetsBothKindsOfAnswerWithTheSettingsOfItsFile) {
  CTestDataDir data;
  const std::string sPort = std::to_string(m_pServer->Port());
  data.Write("SearchAgent.xml", "<SearchAgent><TiaowenServerIP> 127.0.0.1 </TiaowenServerIP><TiaowenPort>" + sPort +
                                    "</TiaowenPort>\n<ArgumentServerIP>localhost</ArgumentServerIP><ArgumentPort>" +
                                    sPort + "</ArgumentPort></SearchAgent>");
  CSearchClient client;
  ASSERT_TRUE(client.Load(data.Root())) << GetLastError();
  EXPECT_EQ(client.TiaowenHost(), "127.0.0.1");
  EXPECT_EQ(client.ArgumentHost(), "localhost");

  std::vector<SearchRecord> vecRecords;
  ASSERT_TRUE(client.QueryStandard("地下水质量标准", vecRecords)) << GetThreadLastError();
  EXPECT_EQ(Join(vecRecords, "Safety_Tiaowenhao"), "GB/T 14848-93|GB/T 14848-2017");
  EXPECT_EQ(Join(vecRecords, "Memo"), "被代替，由 GB/T 14848-2017 代替|");
  ASSERT_TRUE(client.QueryArgument("GB 50014-2021", "4.1.15", vecRecords)) << GetThreadLastError();
  EXPECT_EQ(Join(vecRecords, "row_name"), "平均日流量 5 L/s|平均日流量 15 L/s");
  EXPECT_EQ(Join(vecRecords, "value"), "2.7|2.4");
  // A line break inside the query is sent as a blank, not as the end of the
  // line: the server sees the whole name (blanks do not count in names).
  ASSERT_TRUE(client.QueryStandard("室外排水\n设计标准", vecRecords));
  EXPECT_EQ(Join(vecRecords, "Safety_Tiaowenhao"), "GB 50014-2021");

  EXPECT_FALSE(client.Query("127.0.0.1", m_pServer->Port(), "[field] nope [whole] x", vecRecords));
  EXPECT_EQ(GetThreadLastError(), "Search server @127.0.0.1:" + sPort + ": unknown field nope");
  EXPECT_FALSE(client.Query("127.0.0.1", m_pServer->Port(), std::string(kMaxSearchQuery, 'x'), vecRecords));
  EXPECT_NE(GetThreadLastError().find("Search query longer than 8191 bytes"), std::string::npos);
}

TEST_F(SearchServerTest, ManyThreadsShareOneClient) {
  CSearchClient client;
  std::atomic<int> nGood{0};
  std::vector<std::thread> vecThreads;
  for (int t = 0; t < 4; ++t)
    vecThreads.emplace_back([&] {
      for (int i = 0; i < 10; ++i) {
        std::vector<SearchRecord> vecRecords;
        if (client.Query("127.0.0.1", m_pServer->Port(), CSearchClient::StandardQuery("GB 50014"), vecRecords) &&
            vecRecords.size() == 2)
          ++nGood;
      }
    });
  for (std::thread& thread : vecThreads) thread.join();
  EXPECT_EQ(nGood, 40);
}

// How the handler treats clients that misbehave, seen from a raw socket.
TEST_F(SearchServerTest, ServerBoundsTheRequestAndItsTime) {
  struct {
    std::string sSend;  // what the client sends (and then it keeps the connection open)
    const char* szAnswer;
    const char* szLog;
  } kCases[] = {
      {"", "", "no complete query within 300 ms"},                           // silent client
      {"[field] Safety_Tiaowen [whole] GB", "", "no complete query"},        // no line end
      {std::string(kMaxSearchQuery + 10, 'x'), "query longer than 8191 bytes", "query too long"},
      {"[field] Safety_Tiaowen [whole] GB 50045-95\r\n", "<Safety_Tiaowenhao>GB 50045-95</Safety_Tiaowenhao>",
       "-> 1 records"},
  };
  for (const auto& c : kCases) {
    int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    addr.sin_port = htons((uint16_t)m_pServer->Port());
    ASSERT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0);
    const auto start = Clock::now();
    SendText(fd, c.sSend);
    std::string sAnswer;
    char buffer[4096];
    for (ssize_t n; (n = recv(fd, buffer, sizeof buffer, 0)) > 0;) sAnswer.append(buffer, (size_t)n);
    close(fd);
    EXPECT_LT(MillisecondsSince(start), 2000) << c.sSend.substr(0, 40);
    if (*c.szAnswer == '\0')
      EXPECT_EQ(sAnswer, "");
    else
      EXPECT_NE(sAnswer.find(c.szAnswer), std::string::npos) << sAnswer;
    for (auto wait = Clock::now(); MillisecondsSince(wait) < 2000;) {
      std::lock_guard<std::mutex> lock(m_mutex);
      if (!m_vecLog.empty()) break;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    ASSERT_EQ(m_vecLog.size(), 1u);
    EXPECT_NE(m_vecLog[0].find(c.szLog), std::string::npos) << m_vecLog[0];
    m_vecLog.clear();
  }
}

TEST(SearchClientTest, SlowServersTimeOutInBoundedTime) {
  struct {
    const char* szWhat;
    std::function<void(int, const std::atomic<bool>&)> fnServe;
  } kCases[] = {
      {"silent", [](int fd, const std::atomic<bool>& bDone) {
         ReadLine(fd);
         WaitUntil(bDone, 5000);
       }},
      // A byte every 20 ms: each read is quick, the whole answer never is.
      {"trickling", [](int fd, const std::atomic<bool>& bDone) {
         ReadLine(fd);
         SendText(fd, "<records>");
         for (auto start = Clock::now(); !bDone && MillisecondsSince(start) < 5000;) {
           if (send(fd, " ", 1, MSG_NOSIGNAL) != 1) return;
           std::this_thread::sleep_for(std::chrono::milliseconds(20));
         }
       }},
  };
  for (const auto& c : kCases) {
    std::atomic<bool> bDone{false};
    CLoopbackServer server([&](int fd) { c.fnServe(fd, bDone); });
    ASSERT_GT(server.Port(), 0);
    CSearchClient client;
    client.SetReadTimeout(250);
    std::vector<SearchRecord> vecRecords;
    const auto start = Clock::now();
    EXPECT_FALSE(client.Query("127.0.0.1", server.Port(), CSearchClient::StandardQuery("x"), vecRecords)) << c.szWhat;
    const long nElapsed = MillisecondsSince(start);
    bDone = true;
    EXPECT_GE(nElapsed, 240) << c.szWhat;
    EXPECT_LT(nElapsed, 1500) << c.szWhat;
    EXPECT_EQ(GetThreadLastError(), "Search server @127.0.0.1:" + std::to_string(server.Port()) +
                                        " timed out: no complete answer within 250 ms")
        << c.szWhat;
  }
}

TEST(SearchClientTest, ClosedPortCannotConnect) {
  int nPort = 0;
  int fd = BoundSocket(false, nPort);  // bound, never listening: connections are refused
  ASSERT_GE(fd, 0);
  CSearchClient client;
  std::vector<SearchRecord> vecRecords;
  const auto start = Clock::now();
  EXPECT_FALSE(client.Query("127.0.0.1", nPort, CSearchClient::StandardQuery("x"), vecRecords));
  EXPECT_LT(MillisecondsSince(start), 1500);
  close(fd);
  EXPECT_EQ(GetThreadLastError().rfind("Cannot connect server @127.0.0.1:" + std::to_string(nPort), 0), 0u)
      << GetThreadLastError();

  EXPECT_FALSE(client.Query("", 80, "q", vecRecords));
  EXPECT_EQ(GetThreadLastError().rfind("Cannot connect server @:80", 0), 0u);
  EXPECT_FALSE(client.Query("127.0.0.1", 0, "q", vecRecords));
  EXPECT_EQ(GetThreadLastError().rfind("Cannot connect server @127.0.0.1:0", 0), 0u);
}

TEST(SearchClientTest, OversizedAnswerIsCutOff) {
  // 100 MB offered; the client stops at its cap and closes.
  std::atomic<long> nSent{0};
  CLoopbackServer server([&](int fd) {
    ReadLine(fd);
    std::string sChunk = "<records>";
    while (sChunk.size() < 65536) sChunk += "<record><value>0123456789</value></record>\r\n";
    for (long n = 0; n < 100L * 1000 * 1000; n += (long)sChunk.size()) {
      if (send(fd, sChunk.data(), sChunk.size(), MSG_NOSIGNAL) != (ssize_t)sChunk.size()) break;
      nSent += (long)sChunk.size();
    }
  });
  ASSERT_GT(server.Port(), 0);
  CSearchClient client;
  std::vector<SearchRecord> vecRecords;
  EXPECT_FALSE(client.Query("127.0.0.1", server.Port(), "q", vecRecords));
  EXPECT_EQ(GetThreadLastError(), "Search server @127.0.0.1:" + std::to_string(server.Port()) +
                                      " sent more than 4194304 bytes; answer cut off");
  EXPECT_TRUE(vecRecords.empty());

  client.SetMaxAnswerBytes(1000);
  EXPECT_FALSE(client.Query("127.0.0.1", server.Port(), "q", vecRecords));
  EXPECT_NE(GetThreadLastError().find("sent more than 1000 bytes"), std::string::npos);
}

TEST(SearchClientTest, AnswersAreReadOrRefusedAsWhole) {
  struct {
    const char* szAnswer;  // sent whole, then the server closes
    const char* szWant;    // "a" field of each record, or the error's end
    bool bOk;
  } kCases[] = {
      {"<records>\r\n</records>\r\n", "", true},
      {"<records/>", "", true},
      {"<?xml version=\"1.0\"?><records><record><a>1 &amp; 2</a><b/><a>dup</a></record>\r\n"
       "<record><c>3</c></record></records>",
       "1 & 2|?", true},
      {"<records><record><a>x</a><b>y</records>", "", true},  // a record without its end does not count
      {"<records><record><a>1", " gave an incomplete answer (no </records>)", false},
      {"HTTP/1.1 400 Bad Request\r\n\r\n", " gave no <records> answer", false},
      {"", " gave no <records> answer", false},
      {"<records><error>index &lt;busy&gt;</error></records>", ": index <busy>", false},
  };
  for (const auto& c : kCases) {
    CLoopbackServer server([&](int fd) {
      ReadLine(fd);
      SendText(fd, c.szAnswer);
    });
    ASSERT_GT(server.Port(), 0);
    CSearchClient client;
    std::vector<SearchRecord> vecRecords;
    bool bOk = client.Query("127.0.0.1", server.Port(), "q", vecRecords);
    EXPECT_EQ(bOk, c.bOk) << c.szAnswer;
    if (bOk)
      EXPECT_EQ(Join(vecRecords, "a"), c.szWant) << c.szAnswer;
    else
      EXPECT_EQ(GetThreadLastError(), "Search server @127.0.0.1:" + std::to_string(server.Port()) + c.szWant);
  }
}

TEST(SearchClientTest, SettingsFileMustNameBothServers) {
  CTempDir dir;
  CSearchClient client;
  EXPECT_FALSE(client.Load(dir.Path()));
  EXPECT_EQ(GetThreadLastError(), "Failed reading file " + dir.Path() + "/Data/SearchAgent.xml");

  CTestDataDir data;
  ASSERT_TRUE(client.Load(data.Root())) << GetLastError();  // the shipped settings
  EXPECT_EQ(client.TiaowenHost(), "127.0.0.1");
  EXPECT_GT(client.ArgumentPort(), 0);

  struct {
    const char* szXml;
    const char* szError;
  } kCases[] = {
      {"<SearchAgent><TiaowenPort>1</TiaowenPort></SearchAgent>", "no server address in <TiaowenServerIP>"},
      {"<TiaowenServerIP>h</TiaowenServerIP><TiaowenPort>70000</TiaowenPort>", "<TiaowenPort> is not a port"},
      {"<TiaowenServerIP>h</TiaowenServerIP><TiaowenPort>1</TiaowenPort><ArgumentServerIP>h</ArgumentServerIP>"
       "<ArgumentPort>-1</ArgumentPort>",
       "<ArgumentPort> is not a port"},
      {"<TiaowenServerIP>h</TiaowenServerIP><TiaowenPort>1</TiaowenPort><ArgumentServerIP></ArgumentServerIP>",
       "no server address in <ArgumentServerIP>"},
  };
  for (const auto& c : kCases) {
    data.Write("SearchAgent.xml", c.szXml);
    CSearchClient fresh;
    EXPECT_FALSE(fresh.Load(data.Root())) << c.szXml;
    EXPECT_NE(GetThreadLastError().find(c.szError), std::string::npos) << GetThreadLastError();
  }
}

}  // namespace
