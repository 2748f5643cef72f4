// The URL helpers: both escapes, the reachability decision, and reading a URL from a server the
// test runs on 127.0.0.1.
#include <gtest/gtest.h>

#include <httplib.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "../foundation/URLHelper.h"
#include "../foundation/URLReader.h"
#include "../platform/HttpClient.h"

namespace {

TEST(URLHelper, EscapesLooselyForURLsAndStrictlyForValues)
{
    struct Case {
        const char* text;
        const char* loose;
        const char* strict;
    };
    const Case cases[] = {
        {"", "", ""},
        {"a b", "a%20b", "a%20b"},
        {"a/b?c=d&e", "a/b?c=d&e", "a%2Fb%3Fc%3Dd%26e"},
        {"\xC3\xBC", "%C3%BC", "%C3%BC"},
        {"x@y.z-_~", "x@y.z-_~", "x@y.z-_~"},
        {"<\"{|}\\^`>", "%3C%22%7B%7C%7D%5C%5E%60%3E", "%3C%22%7B%7C%7D%5C%5E%60%3E"},
        {"+,;!*'()[]#", "+,;!*'()[]#", "%2B%2C%3B%21%2A%27%28%29%5B%5D%23"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(URLHelper::EscapeStringForUrl(TSString(c.text)), TSString(c.loose)) << c.text;
        EXPECT_EQ(URLHelper::EscapeStringForUrlForced(TSString(c.text)), TSString(c.strict)) << c.text;
    }
    EXPECT_EQ(URLHelper::EscapeStringForUrlForced(TSString("a\0b", 3)), TSString("a%00b"));
}

TEST(URLHelper, ReachabilityFlagsDecideInTheirOrder)
{
    const std::pair<uint32_t, bool> rows[] = {
        {0, false}, {4, false}, {2, true}, {2 | 16, true}, {2 | 4, false},
        {2 | 4 | 8, true}, {2 | 4 | 32, true}, {2 | 4 | 8 | 16, false},
    };
    for (const auto& [flags, online] : rows)
        EXPECT_EQ(URLHelper::IsReachableByFlags(flags), online) << flags;
}

// A socket bound to a free port of 127.0.0.1; with `listening` it accepts connections into its
// backlog and never answers, without it the port refuses them.
class LoopbackSocket {
public:
    explicit LoopbackSocket(bool listening) : m_fd(socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (bind(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
            (!listening || listen(m_fd, 4) == 0) &&
            getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
            m_port = ntohs(address.sin_port);
    }
    ~LoopbackSocket() { close(m_fd); }
    std::string Url() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/"; }
    int Port() const { return m_port; }

private:
    int m_fd;
    int m_port = 0;
};

TEST(URLReader, ReturnsTheExactBodyOrNothing)
{
    httplib::Server server;
    std::string cacheControl;
    server.Get("/body", [&](const httplib::Request& request, httplib::Response& response) {
        cacheControl = request.get_header_value("Cache-Control");
        response.set_content(std::string("a\0b\xff", 4), "application/octet-stream");
    });
    server.Get("/moved", [](const httplib::Request&, httplib::Response& response) { response.set_redirect("/body"); });
    server.Get("/missing", [](const httplib::Request&, httplib::Response& response) { response.status = 404; });
    server.Get("/huge", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(std::string(URLReader::kLargestBody + 1, 'x'), "text/plain");
    });
    const int port = server.bind_to_any_port("127.0.0.1");
    ASSERT_GT(port, 0);
    std::thread serving([&] { server.listen_after_bind(); });
    while (!server.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const std::string base = "http://127.0.0.1:" + std::to_string(port);

    URLReader reader;
    EXPECT_EQ(reader.GetUrl(TSString((base + "/body").c_str())), TSString("a\0b\xff", 4));
    EXPECT_EQ(cacheControl, "no-cache");
    EXPECT_EQ(reader.GetUrl(TSString((base + "/moved").c_str())), TSString("a\0b\xff", 4));
    EXPECT_TRUE(reader.GetUrl(TSString((base + "/missing").c_str())).IsEmpty());   // no body
    EXPECT_TRUE(reader.GetUrl(TSString((base + "/huge").c_str())).IsEmpty());
    EXPECT_TRUE(reader.GetUrl(TSString()).IsEmpty());
    EXPECT_TRUE(reader.GetUrl(TSString(("file://" + base).c_str())).IsEmpty());
    server.stop();
    serving.join();
}

TEST(URLReader, ARefusedConnectionFailsAtOnceAndASilentServerAtTheTimeOut)
{
    LoopbackSocket refusing(false), silent(true);
    ASSERT_GT(refusing.Port(), 0);
    ASSERT_GT(silent.Port(), 0);
    const auto refusedStart = std::chrono::steady_clock::now();
    EXPECT_TRUE(URLReader().GetUrl(TSString(refusing.Url().c_str())).IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - refusedStart, std::chrono::seconds(2));

    std::string body = "untouched";
    const auto silentStart = std::chrono::steady_clock::now();
    EXPECT_FALSE(Platform::HttpGet(silent.Url(), 1.0, 1024, &body));
    const auto waited = std::chrono::steady_clock::now() - silentStart;
    EXPECT_GE(waited, std::chrono::milliseconds(900));
    EXPECT_LT(waited, std::chrono::seconds(5));
    EXPECT_EQ(body, "untouched");
}

} // namespace
