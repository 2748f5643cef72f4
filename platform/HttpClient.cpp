#include "HttpClient.h"

#include <curl/curl.h>

#include <memory>
#include <mutex>

namespace Platform {

namespace {

struct Download {
    std::string bytes;
    size_t largest;
};

size_t Receive(char* data, size_t size, size_t count, void* context)
{
    Download& download = *static_cast<Download*>(context);
    const size_t length = size * count;
    if (length > download.largest - download.bytes.size())
        return 0;   // ends the transfer with an error
    download.bytes.append(data, length);
    return length;
}

} // namespace

bool HttpGet(const std::string& url, double timeoutSeconds, size_t largestBody, std::string* body)
{
    if (url.empty() || body == nullptr || !(timeoutSeconds > 0))
        return false;
    static std::once_flag s_initialised;
    std::call_once(s_initialised, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });

    std::unique_ptr<CURL, void (*)(CURL*)> handle(curl_easy_init(), curl_easy_cleanup);
    if (!handle)
        return false;
    std::unique_ptr<curl_slist, void (*)(curl_slist*)> headers(
        curl_slist_append(nullptr, "Cache-Control: no-cache"), curl_slist_free_all);
    Download download{std::string(), largestBody};
    CURL* curl = handle.get();
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 10L);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(timeoutSeconds * 1000));
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);   // no SIGALRM in a host's process
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, Receive);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &download);
    if (curl_easy_perform(curl) != CURLE_OK)
        return false;
    body->swap(download.bytes);
    return true;
}

} // namespace Platform
