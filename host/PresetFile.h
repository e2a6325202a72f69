// The files hosts exchange a VST 2 plug-in's state in: a program (.fxp) or a
// bank (.fxb), each either a list of parameter values or the plug-in's own
// chunk. Every integer and float in them is 32-bit big-endian.
#pragma once

#include <string>
#include <vector>

#include "Plugin.h"

namespace vsthost {

struct PresetFile {
    struct Program {
        std::string name;
        std::vector<float> values;
    };

    bool bank = false;     // .fxb; otherwise .fxp
    bool opaque = false;   // the plug-in's chunk; otherwise parameter values
    VstInt32 version = 1;  // of the file format: banks are 1 or 2
    VstInt32 pluginId = 0;
    VstInt32 pluginVersion = 0;
    VstInt32 numParams = 0;       // programs: the parameters of the plug-in
    VstInt32 numPrograms = 0;     // banks: the programs of the plug-in
    VstInt32 currentProgram = 0;  // banks of version 2
    std::vector<unsigned char> chunk;
    std::vector<Program> programs;  // one for a program file with values
    std::string name;               // a program file's name
};

// The file's bytes; the layout is fixed by the format.
std::vector<unsigned char> encodePresetFile(const PresetFile& file);
// Checks magics, sizes and counts before trusting any of them; false with a
// reason in `error` for anything damaged or not a preset file.
bool decodePresetFile(const std::vector<unsigned char>& bytes, PresetFile& file, std::string& error);

bool readPresetFile(const std::string& path, PresetFile& file, std::string& error);
bool writePresetFile(const std::string& path, const PresetFile& file, std::string& error);

// The plug-in's current program (bank: every program) as a file: its chunk
// when it declares its programs as chunks, its parameter values otherwise.
PresetFile capturePreset(Plugin& plugin, bool bank);
// Gives the file to the plug-in; refuses a file of another plug-in or one
// the plug-in rejects, with a reason in `error`.
bool applyPreset(Plugin& plugin, const PresetFile& file, std::string& error);

}  // namespace vsthost
