// `sorvane render`: decodes a B-format file (or the built-in demo scene) into
// a speaker-feed file through a VST 2.4 plug-in loaded as a DAW loads it.
#pragma once

#include <string>
#include <vector>

struct RenderOptions {
    std::string plugin;
    std::vector<std::string> files;     // [IN] OUT
    std::string input;                  // ours: b-format, ambix or n3d; empty: leave the plug-in's
    std::string preset;                 // .fxp or .fxb applied first; empty: none
    std::string layout;                 // empty: leave the plug-in's
    std::string program;                // number or name; empty: leave it
    std::vector<std::string> settings;  // NAME=VALUE, in order
    std::vector<std::string> automations;  // NAME=TIME:VALUE,TIME:VALUE,...
    std::string channelOrder;           // ours: natural (default) or 5.1; others have none
    int outputs = 0;                    // other plug-ins: outputs to write; 0: up to eight
    int block = 1024;
    std::string precision = "float";
    int bits = 0;  // 0: 32-bit float
    bool quiet = false;
    std::string sofa;  // the head's responses for "Headphones"; empty: the plug-in's own search
};

// Returns the process exit code; messages go to stderr, tables to stdout.
int runRender(const RenderOptions& options);
