// The bundle's manifest and the plug-in's description: ports, units, ranges
// and choices, all taken from the parameter protocol.
#include "PluginTurtle.h"

#include <sstream>

#include "ControlDescriptions.h"
#include "Lv2Ports.h"
#include "Turtle.h"

namespace sorvane::lv2 {

namespace {

const char* unitIri(Unit unit) {
    switch (unit) {
    case Unit::Degree: return "units:degree";
    case Unit::Percent: return "units:pc";
    case Unit::Decibel: return "units:db";
    case Unit::Hertz: return "units:hz";
    case Unit::Coefficient: return "units:coef";
    default: return nullptr;
    }
}

struct AudioPort {
    const char* name;
    const char* comment;
};

constexpr AudioPort kInputPorts[kInputs] = {
    {"W (omni)",
     "B-format W, the omnidirectional component. The input control says how the four inputs carry the field: "
     "B-Format (W 3 dB down, order W, X, Y, Z), AmbiX (ACN order W, Y, Z, X with SN3D) or N3D (ACN order, N3D)."},
    {"Input 2 (X; Y in ACN)", "B-format X (front) in the B-Format order; Y (left) in the ACN orders (AmbiX, N3D)."},
    {"Input 3 (Y; Z in ACN)",
     "B-format Y (left) in the B-Format order; Z (up) in the ACN orders (AmbiX, N3D). With only three inputs "
     "connected, the ACN orders read W, Y, X: the horizontal subset."},
    {"Input 4 (Z; X in ACN)", "B-format Z (up) in the B-Format order; X (front) in the ACN orders (AmbiX, N3D)."},
};

// Named after the default 5.1 channel order.
constexpr const char* kOutputSpeakers[kOutputs] = {"L", "R", "C", "LFE", "Ls", "Rs"};

void writePort(std::ostream& out, std::uint32_t index, const char* kinds, const std::string& symbol,
               const std::string& name) {
    out << "[\n\t\ta " << kinds << " ;\n\t\tlv2:index " << index << " ;\n\t\tlv2:symbol " << quoted(symbol)
        << " ;\n\t\tlv2:name " << quoted(name);
}

void writeControl(std::ostream& out, int control) {
    const ControlDescription d = describeControl(control);
    writePort(out, controlPort(control), "lv2:InputPort, lv2:ControlPort", d.symbol, d.name);
    out << " ;\n\t\tlv2:default " << number(d.initial) << " ;\n\t\tlv2:minimum " << number(d.minimum)
        << " ;\n\t\tlv2:maximum " << number(d.maximum);
    if (const char* unit = unitIri(d.unit)) out << " ;\n\t\tunits:unit " << unit;
    if (d.integer && d.enumeration)
        out << " ;\n\t\tlv2:portProperty lv2:integer, lv2:enumeration";
    else if (d.integer)
        out << " ;\n\t\tlv2:portProperty lv2:integer";
    if (control == kDecodeMode)
        out << " ;\n\t\trdfs:comment \"The speaker layout. Changing it loads nothing: presets set a layout and its "
               "settings together.\"";
    if (control == kInput)
        out << " ;\n\t\trdfs:comment \"How the four inputs carry the sound field: B-Format (W 3 dB down, order W, X, "
               "Y, Z), AmbiX (ACN order W, Y, Z, X, SN3D) or N3D (ACN order, N3D). Presets leave it alone.\"";
    if (control == kFiveDecoderControl)
        out << " ;\n\t\trdfs:comment \"How 5.0 and 5.1 decode: virtual microphones or one of the two fixed "
               "matrices.\"";
    for (std::size_t i = 0; i < d.scalePoints.size(); ++i)
        out << (i ? ", [\n" : " ;\n\t\tlv2:scalePoint [\n") << "\t\t\trdfs:label " << quoted(d.scalePoints[i].label)
            << " ;\n\t\t\trdf:value " << number(d.scalePoints[i].value) << "\n\t\t]";
    out << "\n\t]";
}

// The editor: embedded in the host's window, driven by its idle calls, told
// of every control port's value.
void writeUi(std::ostream& out) {
    out << "\n"
        << iri(kUiUri) << "\n\ta ui:X11UI ;\n\tlv2:requiredFeature ui:idleInterface, ui:parent ;\n"
        << "\tlv2:optionalFeature ui:noUserResize, ui:resize, ui:touch, opts:options, urid:map ;\n"
        << "\topts:supportedOption ui:scaleFactor ;\n\tlv2:extensionData ui:idleInterface, opts:interface ;\n"
        << "\tui:portNotification ";
    for (std::uint32_t c = 0; c < kControls; ++c)
        out << (c ? ", " : "") << "[\n\t\tui:plugin " << iri(kPluginUri) << " ;\n\t\tlv2:symbol "
            << quoted(kControlSymbols[c]) << " ;\n\t\tui:protocol ui:floatProtocol\n\t]";
    out << ", [\n\t\tui:plugin " << iri(kPluginUri) << " ;\n\t\tlv2:symbol " << quoted(kTrackingStateSymbol)
        << " ;\n\t\tui:protocol ui:floatProtocol\n\t]";
    out << " .\n";
}

}  // namespace

std::string manifestTurtle(const std::string& binary, const std::string& uiBinary,
                           const std::vector<std::string>& presetUris) {
    std::ostringstream out;
    out << kPrefixes << iri(kPluginUri) << "\n\ta lv2:Plugin ;\n\tlv2:binary " << iri(binary) << " ;\n\trdfs:seeAlso "
        << iri(kPluginTurtle) << " .\n\n"
        << iri(kUiUri) << "\n\ta ui:X11UI ;\n\tlv2:binary " << iri(uiBinary) << " ;\n\trdfs:seeAlso "
        << iri(kPluginTurtle) << " .\n";
    for (const std::string& uri : presetUris)
        out << "\n"
            << iri(uri) << "\n\ta pset:Preset ;\n\tlv2:appliesTo " << iri(kPluginUri) << " ;\n\trdfs:seeAlso "
            << iri(kPresetTurtle) << " .\n";
    return out.str();
}

std::string pluginTurtle() {
    std::ostringstream out;
    // The maker belongs to the project, of which the plug-in is a part.
    out << kPrefixes << iri(kProjectUri) << "\n\ta doap:Project ;\n\tdoap:name \"Sorvane\" ;\n"
        << "\tdoap:maintainer [\n\t\ta foaf:Organization ;\n\t\tfoaf:name \"Tamberlyn\"\n\t] .\n\n"
        << iri(kPluginUri) << "\n\ta lv2:Plugin, lv2:SpatialPlugin ;\n\tdoap:name \"Sorvane\" ;\n"
        << "\tlv2:project " << iri(kProjectUri) << " ;\n\tui:ui " << iri(kUiUri) << " ;\n"
        << "\tlv2:minorVersion " << kMinorVersion << " ;\n\tlv2:microVersion " << kMicroVersion << " ;\n"
        << "\trdfs:comment \"Decodes a first-order B-format sound field into speaker feeds for stereo, 2.1, quad, "
           "5.0 and 5.1, after rotating, tilting, tumbling and zooming it.\" ;\n"
        << "\tlv2:optionalFeature lv2:hardRTCapable, <http://lv2plug.in/ns/ext/options#options>, "
           "<http://lv2plug.in/ns/ext/urid#map> ;\n\tlv2:port ";
    for (std::uint32_t c = 0; c < kInputs; ++c) {
        writePort(out, kFirstInput + c, "lv2:InputPort, lv2:AudioPort", kInputSymbols[c], kInputPorts[c].name);
        out << " ;\n\t\trdfs:comment " << quoted(kInputPorts[c].comment) << "\n\t], ";
    }
    for (std::uint32_t c = 0; c < kOutputs; ++c) {
        const std::string n = std::to_string(c + 1);
        writePort(out, kFirstOutput + c, "lv2:OutputPort, lv2:AudioPort", kOutputSymbols[c],
                  "Out " + n + " (" + kOutputSpeakers[c] + ")");
        out << " ;\n\t\trdfs:comment "
            << quoted(std::string("Speaker feed ") + n + ". In 5.1 channel order (the default) the " +
                      kOutputSpeakers[c] +
                      " speaker, silent where the layout has none; in natural order the layout's " + "own channel " +
                      n + ", silent past the layout's last.")
            << "\n\t], ";
    }
    for (std::uint32_t port = kFirstControl; port < kPortCount; ++port) {
        if (port == kLatencyPort) {
            writePort(out, kLatencyPort, "lv2:OutputPort, lv2:ControlPort", kLatencySymbol, "Latency");
            out << " ;\n\t\tlv2:designation lv2:latency ;\n\t\tlv2:minimum 0.0 ;\n\t\tlv2:maximum 0.0 ;\n"
                << "\t\tunits:unit units:frame ;\n\t\tlv2:portProperty lv2:integer, pprops:notOnGUI\n\t]";
        } else if (port == kTrackingStatePort) {
            writePort(out, kTrackingStatePort, "lv2:OutputPort, lv2:ControlPort", kTrackingStateSymbol,
                      "Tracking port");
            out << " ;\n\t\tlv2:minimum " << number(kTrackingNoSocket) << " ;\n\t\tlv2:maximum 65535.0 ;\n"
                << "\t\tlv2:portProperty lv2:integer ;\n\t\trdfs:comment \"The UDP port the head tracker listens "
                   "on for OSC; 0 when it is not listening, -1 when every port from 7770 to 7799 is taken, -2 "
                   "when no socket could be opened.\" ;\n\t\tlv2:scalePoint [\n\t\t\trdfs:label \"Not listening\" ;\n"
                   "\t\t\trdf:value 0.0\n\t\t], [\n\t\t\trdfs:label \"Every port taken\" ;\n\t\t\trdf:value -1.0\n"
                   "\t\t], [\n\t\t\trdfs:label \"No socket\" ;\n\t\t\trdf:value -2.0\n\t\t]\n\t]";
        } else {
            writeControl(out, controlOfPort(port));
        }
        out << (port + 1 < kPortCount ? ", " : " .\n");
    }
    writeUi(out);
    return out.str();
}

}  // namespace sorvane::lv2
