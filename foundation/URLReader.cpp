#include "URLReader.h"

#include <string>

#include "../platform/HttpClient.h"

TSString URLReader::GetUrl(const TSString& url)
{
    std::string body;
    if (url.IsEmpty() || !Platform::HttpGet(url.ConstData(), kTimeoutSeconds, kLargestBody, &body))
        return TSString();
    return TSString(body.data(), body.size());
}
