// SPDX-License-Identifier: MIT
// What dx4-sim prints: the device to open, events, answers to commands, the state of the drives.
#include "simulator/reporter.h"

#include "simulator/byte_log.h"
#include "simulator/utf8.h"

#include <cstdio>

namespace dx4::sim {

namespace {

const char *eventName(LineEvent::Kind kind)
{
    switch (kind) {
    case LineEvent::Kind::Request:
        return "request";
    case LineEvent::Kind::Damaged:
        return "damaged-request";
    case LineEvent::Kind::Fault:
        return "fault";
    case LineEvent::Kind::Reply:
        return "reply";
    case LineEvent::Kind::NoReply:
        return "no-reply";
    case LineEvent::Kind::Plug:
        return "plug";
    }
    return "";
}

std::string number(double value, int decimals)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

} // namespace

std::string jsonText(const std::string &text)
{
    std::string quoted = "\"";
    for (char character : validUtf8(text)) {
        const unsigned code = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            quoted += '\\';
            quoted += character;
        } else if (code < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", code);
            quoted += escape;
        } else {
            quoted += character;
        }
    }
    return quoted + '"';
}

void Reporter::line(const std::string &text)
{
    m_out << text << '\n' << std::flush;
}

void Reporter::opened(const char *kind, const std::string &path, const std::string &link)
{
    const std::string linked = link.empty() ? std::string() : ",\"link\":" + jsonText(link);
    line(m_json ? "{\"event\":" + jsonText(kind) + ",\"path\":" + jsonText(path) + linked + "}"
                : std::string(kind) + ' ' + path);
}

void Reporter::event(const LineEvent &event)
{
    if (!m_json) {
        if (m_showEvents)
            line(number(static_cast<double>(event.time.count()) / 1e6, 3) + ' ' + logLine(event));
        return;
    }
    std::string text = "{\"event\":" + jsonText(eventName(event.kind));
    text += ",\"frame\":" + std::to_string(event.number);
    text += ",\"time\":" + number(static_cast<double>(event.time.count()) / 1e6, 6);
    if (!event.bytes.empty())
        text += ",\"bytes\":" + jsonText(toHex(event.bytes));
    if (!event.text.empty())
        text += ",\"text\":" + jsonText(event.text);
    line(text + "}");
}

void Reporter::answer(bool good, const std::string &text)
{
    if (m_json)
        line(std::string("{\"event\":\"answer\",\"ok\":") + (good ? "true" : "false")
             + ",\"text\":" + jsonText(text) + "}");
    else if (good)
        line(text.empty() ? "ok" : text);
    else
        line("error: " + text);
}

void Reporter::status(int station, const Inverter &inverter)
{
    const Drive &drive = inverter.drive();
    const std::string state = !inverter.powered() ? "off"
        : drive.fault() != Fault::None            ? "fault"
        : drive.running()                         ? "running"
                                                  : "stopped";
    const std::string hertz =
        number(drive.reverse() ? -drive.outputHertz() : drive.outputHertz(), 2);
    const std::string amperes = number(drive.amperes(), 1);
    const std::string volts = number(drive.volts(), 0);
    const std::string link = number(drive.linkVolts(), 0);
    const std::string celsius = number(drive.celsius(), 1);
    const std::string fault = faultName(drive.fault());
    if (m_json)
        line("{\"event\":\"status\",\"station\":" + std::to_string(station)
             + ",\"state\":" + jsonText(state) + ",\"hertz\":" + hertz + ",\"amperes\":" + amperes
             + ",\"volts\":" + volts + ",\"link\":" + link + ",\"celsius\":" + celsius
             + ",\"fault\":" + jsonText(fault) + "}");
    else
        line("station " + std::to_string(station) + ": " + state + ", " + hertz + " Hz, " + amperes
             + " A, " + volts + " V, link " + link + " V, " + celsius + " C, fault " + fault);
}

} // namespace dx4::sim
