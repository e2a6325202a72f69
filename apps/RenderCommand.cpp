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
        "Input: WAV (also WAVE_FORMAT_EXTENSIBLE / .amb), AIFF, FLAC, CAF, W64 with 3 or 4 channels.\n"
        "--input says how they carry the sound field, and sets the plug-in's Input setting:\n"
        "b-format (W 3 dB down, order W, X, Y, Z; three channels W, X, Y), ambix (ACN order W, Y, Z, X\n"
        "with SN3D; three channels W, Y, X) or n3d (ACN order with N3D). --ambix is --input ambix.\n"
        "Without either, the plug-in's own setting stands (b-format in a new instance).\n\n"
        "Settings are applied in this order: --preset, --layout, --program, --channel-order, --input,\n"
        "then each --set as given. "
        "--set NAME=VALUE takes a parameter's name as `sorvane info` lists it and a value in the\n"
        "units its display shows (\"Rotate=30\", \"Sub. Gain=-6dB\", \"Zoom Method=Focus\",\n"
        "\"Pattern=Cardioid\", \"Input=AmbiX\") or normalised with an n (\"Zoom=0.75n\"). Ours takes the\n"
        "value nearest the number asked for, as its LV2 edition does with the same number on a port.\n\n"
        "Output: the layout's channels (6 in 5.1 order), 32-bit float WAV with the layout's channel mask,\n"
        "or the format of the extension (.wav .w64 .aiff .flac .caf .rf64). The file is written beside\n"
        "the target and moved into place only when complete. With another plug-in, its first outputs\n"
        "(up to 8, or --outputs N) are written without a channel mask. With --set Output=Headphones, ours\n"
        "writes the two ears (a stereo file).");
    addPluginOption(*render, options->plugin);
    render->add_option("files", options->files, "[IN] OUT")->required()->expected(1, 2);
    render->add_option("--input", options->input, "b-format, ambix or n3d: how the input carries the field");
    render->add_flag_callback(
        "--ambix", [options] { options->input = "ambix"; }, "the same as --input ambix");
    render->add_option("--preset", options->preset, "a program (.fxp) or bank (.fxb) file of the plug-in");
    render->add_option("--layout", options->layout, "stereo, 2.1, quad, 5.0 or 5.1");
    render->add_option("--program", options->program, "program number (0-4) or name, in the chosen layout");
    render->add_option("--set", options->settings, "NAME=VALUE, repeatable")->take_all();
    render
        ->add_option("--automate", options->automations,
                     "NAME=TIME:VALUE,TIME:VALUE,...: the parameter moves in a straight line between values (as\n"
                     "--set takes them) at times in seconds, set at each block's first frame and exactly at\n"
                     "each time given (blocks end there); repeatable")
        ->take_all();
    render->add_option("--channel-order", options->channelOrder,
                       "natural (the layout's own channels, the default) or 5.1 (always six: L R C LFE Ls Rs)");
    render->add_option("--outputs", options->outputs,
                       "with another plug-in: how many of its outputs to write (default: up to 8)");
    render->add_option("--block", options->block, "frames per process call")->capture_default_str();
    render->add_option("--precision", options->precision, "audio callback: float or double")->capture_default_str();
    render->add_option("--bits", options->bits, "16, 24 or 32-bit integer samples (default: 32-bit float)");
    render->add_flag("--quiet,-q", options->quiet, "no progress, settings or tables");
    render->add_option("--sofa", options->sofa,
                       "SOFA file of head responses for Output=Headphones (default: $SORVANE_SOFA, then\n"
                       "~/.config/sorvane/hrtf.sofa, then /usr/share/libmysofa/default.sofa)");
    render->callback([options, &exitCode] { exitCode = runRender(*options); });
}
