// sorvane edit: a plug-in's editor in a window of its own, driven as a host
// drives it, so the interface can be tried without a DAW. Closing the window
// closes the editor and then the plug-in.
#include <iostream>
#include <memory>
#include <string>

#include "Commands.h"
#include "Console.h"
#include "EditorWindow.h"
#include "Plugin.h"
#include "PluginOption.h"

namespace {

int runEdit(const std::string& path) {
    std::string error;
    auto fx = vsthost::Plugin::load(path, error);
    if (!fx) return console::fail("edit", error);
    fx->open();
    fx->setSampleRate(48000.0f);
    fx->setBlockSize(512);
    fx->resume();
    auto window = vsthost::EditorWindow::open(*fx, error, fx->effectName() + " (sorvane edit)");
    if (!window) return console::fail("edit", error);
    window->run();
    window.reset();
    fx->suspend();
    return 0;
}

}  // namespace

void addEditCommand(CLI::App& app, int& exitCode) {
    auto* command =
        app.add_subcommand("edit", "Open a plug-in's editor in a window of its own (close the window to quit)");
    auto path = std::make_shared<std::string>();
    addPluginOption(*command, *path);
    command->callback([path, &exitCode] { exitCode = runEdit(*path); });
}
