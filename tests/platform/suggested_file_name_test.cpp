#include "platform/suggested_file_name.h"

#include <gtest/gtest.h>

#include <string>

namespace corvane {
namespace {

HttpResponse response(const std::string& url, std::vector<HttpHeader> headers = {}) {
    HttpResponse result;
    result.statusCode = 200;
    result.url = url;
    result.headers = std::move(headers);
    return result;
}

constexpr const char* serviceUrl = "https://reportingitc.apple.com/autoingestion.tft?";

TEST(SuggestedFileNameTest, IsTheFileNameParameterOfTheHeader) {
    const struct {
        const char* header;
        const char* expected;
    } cases[] = {
        {"attachment; filename=S_D_80012345_20150104.txt.gz", "S_D_80012345_20150104.txt.gz"},
        {"attachment;filename=S.gz", "S.gz"},
        {"inline; filename=\"S.gz\"", "S.gz"},
        {"filename=S.gz", "S.gz"},
        {"attachment; FileName=S.gz", "S.gz"},
        {"attachment; filename = \"S.gz\" ; size=5", "S.gz"},
        {"attachment; filename=  S.gz  ;x=y", "S.gz"},
        {"attachment; filename=a b.gz", "a b.gz"},
        {"attachment; filename=\"a;b.gz\"", "a;b.gz"},
        {"attachment; filename=\" a \"", " a "},
        {"attachment; filename=\"a\\\"b\\\\c\\d\"", "a\"b\\c\\d"},
        {"attachment; filename=\"open", "open"},
        {"attachment; filename=\"open\\", "open\\"},
        {"attachment; filename=first; filename=second", "first"},
        {"attachment; filename=\"\"; filename=second", "second"},
        {"attachment; filename=\"\"ignored", "ignored"},
        {"attachment; xfilename=wrong; filename=right", "right"},
        {"attachment; x=\"; filename=wrong\"; filename=right", "right"},
        {"attachment; filename=a/../b/n", "a_.._b_n"},
        {"attachment; filename=/etc/passwd", "_etc_passwd"},
        {"attachment; filename=a%20b", "a%20b"},
        {"attachment; filename=\xe9t\xe9.gz", "\xc3\xa9t\xc3\xa9.gz"},
        {"attachment; filename=plain; filename*=UTF-8''%e2%82%ac.gz", "\xe2\x82\xac.gz"},
        {"attachment; filename*=utf-8'de'%C3%A4.gz; filename=plain", "\xc3\xa4.gz"},
        {"attachment; filename*=iso-8859-1'en'%A3.gz", "\xc2\xa3.gz"},
        {"attachment; filename*=\"UTF-8''a%2Fb\"", "a_b"},
        {"attachment; filename*=UTF-8''%ff; filename=plain", "plain"},
        {"attachment; filename*=koi8-r''%C1; filename=plain", "plain"},
        {"attachment; filename*=nothing; filename=plain", "plain"},
        {"attachment; filename*=UTF-8'nothing; filename=plain", "plain"},
        {"attachment; filename*=UTF-8''; filename=plain", "plain"},
        {"attachment; filename*=UTF-8''100%zz%4; filename=plain", "100%zz%4"},
        {"attachment; filename*=UTF-8''%4=%!4%4g%4@%4A", "%4=%!4%4g%4@J"},
    };
    for (const auto& [header, expected] : cases) {
        EXPECT_EQ(suggestedFileName(response(serviceUrl, {{"Content-Disposition", header}})), expected)
            << header;
    }
}

TEST(SuggestedFileNameTest, ComesFromTheUrlWithoutAUsableParameter) {
    for (const char* header : {"", "attachment", "attachment;", ";", ";;;", "=", "=;=",
                               "attachment; filename=", "attachment; filename", "attachment; filename=\"\"",
                               "attachment; filename=\"", "attachment; filename=;", "attachment; name=x",
                               "attachment; filename*=", "attachment; x=\"filename=y"}) {
        EXPECT_EQ(suggestedFileName(response(serviceUrl, {{"Content-Disposition", header}})),
                  "autoingestion.tft")
            << header;
    }
}

TEST(SuggestedFileNameTest, FindsTheHeaderWhateverItsLetterCase) {
    EXPECT_EQ(suggestedFileName(response(serviceUrl, {{"content-DISPOSITION", "x; filename=a"}})), "a");
    EXPECT_EQ(suggestedFileName(response(serviceUrl, {{"X-Content-Disposition", "x; filename=a"}})),
              "autoingestion.tft");
}

TEST(SuggestedFileNameTest, LooksThroughRepeatedHeaders) {
    EXPECT_EQ(suggestedFileName(response(serviceUrl, {{"Content-Disposition", "attachment"},
                                                      {"Content-Disposition", "attachment; filename=a"},
                                                      {"Content-Disposition", "attachment; filename=b"}})),
              "a");
}

TEST(SuggestedFileNameTest, IsTheLastComponentOfTheUrl) {
    const struct {
        const char* url;
        const char* expected;
    } cases[] = {
        {serviceUrl, "autoingestion.tft"},
        {"https://host/autoingestion.tft", "autoingestion.tft"},
        {"https://host:8443/a/b.txt?c=d/e#f/g", "b.txt"},
        {"https://host/a#b?c/d", "a"},
        {"https://host/a/", "a"},
        {"https://host/a%20b%C3%A9.txt", "a b\xc3\xa9.txt"},
        {"https://host/a%2F..%2Fb", "a_.._b"},
        {"https://host/%ff", "%ff"},
        {"https://host/100%", "100%"},
        {"https://host/\xff", "\xc3\xbf"},
        {"https://host/", "Unknown"},
        {"https://host", "Unknown"},
        {"https://host?a/b", "Unknown"},
        {"https://host///", "Unknown"},
        {"", "Unknown"},
    };
    for (const auto& [url, expected] : cases)
        EXPECT_EQ(suggestedFileName(response(url)), expected) << url;
}

}  // namespace
}  // namespace corvane
