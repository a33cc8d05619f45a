#include "bench/documents.h"

#include "bench/random.h"

#include <charconv>
#include <cmath>

namespace bench {
namespace {

std::string shortest(double value)
{
    char digits[32];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

std::string fixed(double value, int decimals)
{
    char digits[64];
    auto const end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals).ptr;
    return std::string(digits, end);
}

// Phrases as they stand in the text of a document: between quotes, escapes included.
char const* const phrases[] = {
    "just landed, the weather could not be better",
    "reading the release notes so that you do not have to",
    "Gr\u00FC\u00DFe aus M\u00FCnchen, hier schneit es schon wieder",
    "\u6771\u4EAC\u306E\u5929\u6C17\u306F\u6674\u308C\u3001\u6700\u9AD8\u306E\u4E00\u65E5\u3067\u3057\u305F",
    "\u65B0\u3057\u3044\u30AB\u30E1\u30E9\u3092\u8CB7\u3044\u307E\u3057\u305F\u3002\u3068\u3066\u3082\u5B09"
    "\u3057"
    "\u3044\u3067\u3059",
    "\u041F\u0440\u0438\u0432\u0435\u0442 \u0432\u0441\u0435\u043C \u0438\u0437 "
    "\u041F\u0435\u0442\u0435\u0440\u0431"
    "\u0443\u0440\u0433\u0430",
    "\u00E7a marche tr\u00E8s bien, merci \u00E0 tous \u2764",
    "she said \\\"never again\\\" and booked the next one",
    "first line\\nsecond line\\n\\tindented third",
    "win \\u00e9 or lose \\u2026 it was \\ud83d\\ude00 fun",
    "see you at C:\\\\shows\\\\tonight",
    "\U0001F680\U0001F680 shipped \U0001F389",
    "\uC548\uB155\uD558\uC138\uC694 \uC5EC\uB7EC\uBD84",
    "does anyone know a good place for lunch near the station?",
};
char const* const names[] = {"Anna Kr\u00FCger",     "\u5C71\u7530\u592A\u90CE", "J. O'Neil",
                             "Mar\u00EDa Jos\u00E9", "\u0418\u0432\u0430\u043D", "sam"};
char const* const cities[] = {"M\u00FCnchen",  "\u6771\u4EAC", "Lyon", "", "somewhere between here and there",
                              "S\u00E3o Paulo"};
char const* const languages[] = {"de", "ja", "fr", "en", "ru", "ko"};

void appendMember(std::string& out, char const* key, std::string const& value)
{
    out.append("\"").append(key).append("\":").append(value).append(",");
}

std::string quoted(std::string const& content)
{
    return "\"" + content + "\"";
}

std::string number(std::size_t value)
{
    return std::to_string(value);
}

std::string wordOf(bool value)
{
    return value ? "true" : "false";
}

void appendUser(std::string& out, Random& random)
{
    std::size_t const id = 10000000 + random.below(900000000);
    std::string const handle = "user_" + number(id % 100000);
    out += "{";
    appendMember(out, "id", number(id));
    appendMember(out, "id_str", quoted(number(id)));
    appendMember(out, "name", quoted(random.pick(names)));
    appendMember(out, "screen_name", quoted(handle));
    appendMember(out, "location", quoted(random.pick(cities)));
    appendMember(out, "description",
                 quoted(std::string(random.pick(phrases)) + " \\/ " + random.pick(phrases)));
    appendMember(out, "url", random.below(3) == 0 ? "null" : quoted("http:\\/\\/t.example\\/" + handle));
    appendMember(out, "protected", wordOf(random.below(9) == 0));
    appendMember(out, "followers_count", number(random.below(200000)));
    appendMember(out, "friends_count", number(random.below(3000)));
    appendMember(out, "created_at", quoted("Sun Aug 31 00:29:15 +0000 20" + number(10 + random.below(10))));
    appendMember(out, "utc_offset", random.below(2) == 0 ? "null" : "-10800");
    appendMember(out, "verified", wordOf(random.below(20) == 0));
    appendMember(out, "profile_background_color", quoted("C0DEED"));
    appendMember(out, "profile_image_url",
                 quoted("http:\\/\\/img.example\\/profile_images\\/" + number(random.next()) + "\\/" +
                        handle + "_normal.jpeg"));
    out += "\"default_profile\":true}";
}

void appendPost(std::string& out, Random& random)
{
    std::size_t const id = static_cast<std::size_t>(500000000000000000U + random.below(99999999999999999U));
    std::string text;
    for (std::size_t i = 0, count = 1 + random.below(4); i < count; ++i)
        text.append(i == 0 ? "" : " ").append(random.pick(phrases));
    out += "{\"metadata\":{\"result_type\":\"recent\",\"iso_language_code\":";
    out += quoted(random.pick(languages)) + "},";
    appendMember(out, "created_at", quoted("Sun Aug 31 00:29:15 +0000 2014"));
    appendMember(out, "id", number(id));
    appendMember(out, "id_str", quoted(number(id)));
    appendMember(out, "text", quoted(text));
    appendMember(
        out, "source",
        quoted("<a href=\\\"http:\\/\\/client.example\\/download\\\" rel=\\\"nofollow\\\">Client for "
               "phones<\\/a>"));
    appendMember(out, "truncated", "false");
    appendMember(out, "in_reply_to_status_id", random.below(3) == 0 ? number(id - 1234567) : "null");
    out += "\"user\":";
    appendUser(out, random);
    out += ",";
    appendMember(out, "geo", "null");
    appendMember(out, "retweet_count", number(random.below(500)));
    appendMember(out, "favorite_count", number(random.below(50)));
    out += "\"entities\":{\"hashtags\":[";
    for (std::size_t i = 0, count = random.below(3); i < count; ++i) {
        out += i == 0 ? "" : ",";
        out += "{\"text\":" + quoted(random.pick(cities)) + ",\"indices\":[" + number(10 * i) + "," +
               number(10 * i + 8) + "]}";
    }
    out += "],\"symbols\":[],\"urls\":[]},";
    appendMember(out, "favorited", "false");
    appendMember(out, "retweeted", "false");
    out += "\"lang\":" + quoted(random.pick(languages)) + "}";
}

void appendOutline(std::string& out, Random& random, bool computed)
{
    double x = -180 + 360 * random.unit();
    double y = -60 + 130 * random.unit();
    out += "[";
    for (std::size_t i = 0, count = 40 + random.below(200); i < count; ++i) {
        x += 0.02 * (random.unit() - 0.5);
        y += 0.02 * (random.unit() - 0.5);
        out += i == 0 ? "[" : ",[";
        out += computed ? shortest(x) : fixed(x, 4);
        out += ",";
        out += computed ? shortest(y) : fixed(y, 4);
        out += "]";
    }
    out += "]";
}

class Indented {
public:
    void open(char bracket)
    {
        out_ += bracket;
        ++depth_;
        first_ = true;
    }
    void close(char bracket)
    {
        --depth_;
        if (!first_)
            newLine();
        out_ += bracket;
        first_ = false;
    }
    void key(std::string const& name)
    {
        item();
        out_ += "\"" + name + "\": ";
    }
    void item()
    {
        if (!first_)
            out_ += ",";
        first_ = false;
        newLine();
    }
    void member(std::string const& name, std::string const& value)
    {
        key(name);
        out_ += value;
    }
    void text(std::string const& value) { out_ += value; }
    std::string take() { return std::move(out_); }

private:
    void newLine() { out_.append("\n").append(2 * depth_, ' '); }

    std::string out_;
    std::size_t depth_ = 0;
    bool first_ = true;
};

} // namespace

std::string socialFeed()
{
    Random random(1);
    std::string out = "{\"statuses\":[";
    for (int i = 0; i < 600; ++i) {
        out += i == 0 ? "" : ",";
        appendPost(out, random);
    }
    out += "],\"search_metadata\":{\"completed_in\":0.087,\"max_id\":505874924095815681,\"query\":"
           "\"%E4%B8%80\",\"count\":600}}";
    return out;
}

std::string mapOutlines()
{
    Random random(2);
    std::string out = "{\"type\":\"FeatureCollection\",\"features\":[";
    for (std::size_t i = 0; i < 160; ++i) {
        out += i == 0 ? "" : ",";
        out += "{\"type\":\"Feature\",\"properties\":{\"name\":\"Region " + number(i) +
               "\"},\"geometry\":{\"type\":\"Polygon\",\"coordinates\":[";
        for (std::size_t ring = 0; ring < 3; ++ring) {
            out += ring == 0 ? "" : ",";
            appendOutline(out, random, i % 2 == 1);
        }
        out += "]}}";
    }
    out += "]}";
    return out;
}

std::string catalogue()
{
    Random random(3);
    Indented out;
    auto const id = [&random] { return 100000000 + random.below(800000000); };
    out.open('{');
    for (char const* section : {"areaNames", "subTopicNames", "topicNames"}) {
        out.key(section);
        out.open('{');
        for (int i = 0; i < 150; ++i)
            out.member(number(id()), quoted("Section " + number(random.below(1000))));
        out.close('}');
    }
    out.key("events");
    out.open('{');
    for (int i = 0; i < 300; ++i) {
        std::string const eventId = number(id());
        out.key(eventId);
        out.open('{');
        out.member("description", "null");
        out.member("id", eventId);
        out.member("logo",
                   random.below(2) == 0 ? "null" : quoted("/images/" + number(random.below(5000)) + ".jpg"));
        out.member("name", quoted("Concert no. " + number(random.below(400))));
        out.key("subTopicIds");
        out.open('[');
        for (std::size_t k = 0, count = 1 + random.below(4); k < count; ++k) {
            out.item();
            out.text(number(id()));
        }
        out.close(']');
        out.member("subjectCode", "null");
        out.member("subtitle", "null");
        out.close('}');
    }
    out.close('}');
    out.key("performances");
    out.open('[');
    for (int i = 0; i < 450; ++i) {
        out.item();
        out.open('{');
        out.member("eventId", number(id()));
        out.member("id", number(id()));
        out.key("prices");
        out.open('[');
        for (std::size_t k = 0, count = 2 + random.below(5); k < count; ++k) {
            out.item();
            out.open('{');
            out.member("amount", number(10000 + 500 * random.below(400)));
            out.member("audienceSubCategoryId", "337100890");
            out.member("seatCategoryId", number(id()));
            out.close('}');
        }
        out.close(']');
        out.key("seatCategories");
        out.open('[');
        for (std::size_t k = 0, count = 2 + random.below(5); k < count; ++k) {
            out.item();
            out.open('{');
            out.key("areas");
            out.open('[');
            for (std::size_t m = 0, areas = 1 + random.below(5); m < areas; ++m) {
                out.item();
                out.open('{');
                out.member("areaId", number(id()));
                out.key("blockIds");
                out.open('[');
                out.close(']');
                out.close('}');
            }
            out.close(']');
            out.member("seatCategoryId", number(id()));
            out.close('}');
        }
        out.close(']');
        out.member("start", number(1372701600000 + 86400000 * random.below(365)));
        out.member("venueCode", quoted("PLEYEL_PLEYEL"));
        out.close('}');
    }
    out.close(']');
    out.close('}');
    return out.take();
}

} // namespace bench
