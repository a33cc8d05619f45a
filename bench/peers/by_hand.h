/// Writing one message without any library and without a tree, as a bound: known keys, strings that are
/// escaped only where they must be, numbers by std::to_chars.
#pragma once

#include "bench/plain_messages.h"
#include "bench/verify.h"

#include <charconv>

namespace bench {

struct ByHand {
    static constexpr char const* name = "by_hand";
    static constexpr Numbers numbers = Numbers::exact;

    class SubscriberWriter {
    public:
        std::string write(Subscriber const& message)
        {
            std::string out;
            out.reserve(120 + message.clientName.size() + message.publisherName.size());
            out += "{\"clientname\":";
            appendString(out, message.clientName);
            out += ",\"commandid\":";
            appendNumber(out, message.commandId);
            out += ",\"eventId\":";
            appendNumber(out, message.eventId);
            out += ",\"filterFreq\":";
            appendReal(out, message.filterFreq);
            out += ",\"filterType\":";
            appendNumber(out, message.filterType);
            out += ",\"id\":-4,\"publisherName\":";
            appendString(out, message.publisherName);
            out += '}';
            return out;
        }
    };

private:
    template <typename Number>
    static void appendNumber(std::string& out, Number value)
    {
        char digits[32];
        out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    }

    static void appendReal(std::string& out, double value)
    {
        std::size_t const start = out.size();
        appendNumber(out, value);
        if (out.find_first_of(".e", start) == std::string::npos)
            out += ".0";
    }

    static void appendString(std::string& out, std::string const& text)
    {
        out += '"';
        char const* pending = text.data();
        char const* const end = pending + text.size();
        for (char const* at = pending; at != end; ++at) {
            auto const byte = static_cast<unsigned char>(*at);
            if (byte >= 0x20 && byte != '"' && byte != '\\')
                continue;
            out.append(pending, at);
            appendEscape(out, byte);
            pending = at + 1;
        }
        out.append(pending, end);
        out += '"';
    }

    static void appendEscape(std::string& out, unsigned char byte)
    {
        if (byte >= 0x20) {
            out += '\\';
            out += static_cast<char>(byte);
            return;
        }
        static char const digits[] = "0123456789abcdef";
        out += "\\u00";
        out += digits[byte >> 4];
        out += digits[byte & 15];
    }
};

} // namespace bench
