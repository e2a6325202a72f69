// sorvane render: command-line options of the renderer.
#include "Commands.h"
#include "PluginOption.h"
#include "render/Render.h"

void addRenderCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<RenderOptions>();
    CLI::App* render = app.add_subcommand(
        "render",
        "Decode a B-format sound file into speaker feeds through the plug-in, as a DAW would.\n"
        "With only OUT, renders the built-in demo scene: sources in front, left, rear, right and above,\n"
        "one at a time and then together.\n\n"
        "Input: WAV (also WAVE_FORMAT_EXTENSIBLE / .amb), AIFF, FLAC, CAF, W64 with 3 (W, X, Y) or\n"
        "4 (W, X, Y, Z) channels, in the plug-in's convention: W carries the omni 3 dB down, order\n"
        "W, X, Y, Z. With --ambix the input is first-order AmbiX (ACN order W, Y, Z, X, SN3D) and is\n"
        "converted first.\n\n"
        "Settings are applied in this order: --preset, --layout, --program, --channel-order, then each\n"
        "--set as given. "
        "--set NAME=VALUE takes a parameter's name as `sorvane info` lists it and a value in the\n"
        "units its display shows (\"Rotate=30\", \"Sub. Gain=-6dB\", \"Zoom Method=Focus\",\n"
        "\"Pattern=Cardioid\") or normalised with an n (\"Zoom=0.75n\").\n\n"
        "Output: the layout's channels (6 in 5.1 order), 32-bit float WAV with the layout's channel mask,\n"
        "or the format of the extension (.wav .w64 .aiff .flac .caf .rf64). The file is written beside\n"
        "the target and moved into place only when complete. With another plug-in, its first outputs\n"
        "(up to 8, or --outputs N) are written without a channel mask.");
    addPluginOption(*render, options->plugin);
    render->add_option("files", options->files, "[IN] OUT")->required()->expected(1, 2);
    render->add_flag("--ambix", options->ambix, "input is first-order AmbiX (ACN/SN3D)");
    render->add_option("--preset", options->preset, "a program (.fxp) or bank (.fxb) file of the plug-in");
    render->add_option("--layout", options->layout, "stereo, 2.1, quad, 5.0 or 5.1");
    render->add_option("--program", options->program, "program number (0-4) or name, in the chosen layout");
    render->add_option("--set", options->settings, "NAME=VALUE, repeatable")->take_all();
    render->add_option("--channel-order", options->channelOrder,
                       "natural (the layout's own channels, the default) or 5.1 (always six: L R C LFE Ls Rs)");
    render->add_option("--outputs", options->outputs,
                       "with another plug-in: how many of its outputs to write (default: up to 8)");
    render->add_option("--block", options->block, "frames per process call")->capture_default_str();
    render->add_option("--precision", options->precision, "audio callback: float or double")->capture_default_str();
    render->add_option("--bits", options->bits, "16, 24 or 32-bit integer samples (default: 32-bit float)");
    render->add_flag("--quiet,-q", options->quiet, "no progress, settings or tables");
    render->callback([options, &exitCode] { exitCode = runRender(*options); });
}
