#include "PresetTurtle.h"

#include <cctype>
#include <sstream>
#include <stdexcept>

#include "ControlDescriptions.h"
#include "FactoryPrograms.h"
#include "Lv2Ports.h"
#include "Turtle.h"
#include "Units.h"

namespace sorvane::lv2 {

namespace {

// "5.1: MS Microphones" from "5.1 MS Microphones": the layout stands apart.
std::string presetLabel(int layout, const std::string& programName) {
    const std::string word = kLayoutWords[layout - kStereoLayout];
    if (programName.rfind(word + " ", 0) != 0)
        throw std::runtime_error("program \"" + programName + "\" does not start with its layout");
    return word + ": " + programName.substr(word.size() + 1);
}

// Lower-case letters and digits, runs of anything else as one hyphen.
std::string slug(const std::string& label) {
    std::string s;
    for (unsigned char c : label) {
        if (std::isalnum(c))
            s += static_cast<char>(std::tolower(c));
        else if (!s.empty() && s.back() != '-')
            s += '-';
    }
    while (!s.empty() && s.back() == '-') s.pop_back();
    return s;
}

}  // namespace

std::vector<Preset> factoryPresets() {
    std::vector<Preset> presets;
    for (int layout = kStereoLayout; layout <= kFiveOneLayout; ++layout) {
        for (int program = 0; program < kFactoryPrograms; ++program) {
            const ProgramRecord record = factoryProgram(layout, program);
            Preset preset;
            preset.label = presetLabel(layout, record.name);
            preset.uri = kPresetUriPrefix + slug(preset.label);
            preset.values.emplace_back(kControlSymbols[kDecodeMode], static_cast<float>(layout - kStereoLayout));
            for (std::int32_t index : programParameters(layout, program))
                preset.values.emplace_back(kControlSymbols[index], unitsOf(index, record.value(index)));
            if (isFiveSpeakerLayout(layout))
                preset.values.emplace_back(kControlSymbols[kFiveDecoderControl],
                                           static_cast<float>(programDecoderType(program)));
            presets.push_back(std::move(preset));
        }
    }
    return presets;
}

std::string presetTurtle(const std::vector<Preset>& presets) {
    std::ostringstream out;
    out << kPrefixes;
    for (const Preset& preset : presets) {
        out << iri(preset.uri) << "\n\ta pset:Preset ;\n\tlv2:appliesTo " << iri(kPluginUri) << " ;\n\trdfs:label "
            << quoted(preset.label) << " ;\n\tlv2:port ";
        for (std::size_t i = 0; i < preset.values.size(); ++i)
            out << (i ? ", " : "") << "[\n\t\tlv2:symbol " << quoted(preset.values[i].first) << " ;\n\t\tpset:value "
                << number(preset.values[i].second) << "\n\t]";
        out << " .\n\n";
    }
    return out.str();
}

}  // namespace sorvane::lv2
