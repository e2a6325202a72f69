// Small pieces of Turtle: literals written so that a host reads back the
// exact float the generator meant.
#pragma once

#include <charconv>
#include <string>

namespace sorvane::lv2 {

inline constexpr char kPrefixes[] =
    "@prefix doap: <http://usefulinc.com/ns/doap#> .\n"
    "@prefix foaf: <http://xmlns.com/foaf/0.1/> .\n"
    "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
    "@prefix opts: <http://lv2plug.in/ns/ext/options#> .\n"
    "@prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .\n"
    "@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n"
    "@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .\n"
    "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
    "@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .\n"
    "@prefix units: <http://lv2plug.in/ns/extensions/units#> .\n"
    "@prefix urid: <http://lv2plug.in/ns/ext/urid#> .\n\n";

// The shortest decimal that reads back as the same float, always with a
// point or an exponent so Turtle types it as a number with a fraction.
inline std::string number(float value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    std::string s(text, end);
    if (s.find_first_of(".e") == std::string::npos) s += ".0";
    return s;
}

inline std::string quoted(const std::string& text) {
    std::string s = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') s += '\\';
        s += c;
    }
    return s + '"';
}

inline std::string iri(const std::string& text) { return "<" + text + ">"; }

}  // namespace sorvane::lv2
