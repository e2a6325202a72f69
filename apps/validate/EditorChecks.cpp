// The editor while the host does other things: closing the instance with
// its editor open, automation from other threads while the editor idles,
// and opening and closing it again and again while audio runs.
#include <cstdlib>

#include "Check.h"
#include "Harness.h"

namespace validate {
namespace {

// Why an editor check cannot run, or empty when it can.
std::string editorUnavailable(const CheckContext& context) {
    auto plugin = createInstance(context.pluginPath, 44100.0f, 1024, false);
    if (!plugin->hasFlag(effFlagsHasEditor)) return "skipped: no editor";
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) return "skipped: no display";
    return "skipped: this build has no window to open an editor in";
}

CheckResult closeWithEditorOpen(const CheckContext& context) { return skip(editorUnavailable(context)); }
CheckResult threadsWithEditor(const CheckContext& context) { return skip(editorUnavailable(context)); }
CheckResult editorCycles(const CheckContext& context) { return skip(editorUnavailable(context)); }

}  // namespace

void addEditorChecks(std::vector<Check>& checks) {
    checks.push_back({"close-editor-open", 1, "effClose while the editor is open", closeWithEditorOpen});
    checks.push_back({"threads-editor", 2, "automation from two threads while the editor idles", threadsWithEditor});
    checks.push_back({"editor-open-close", 2, "editor opened and closed 1000 times while audio runs", editorCycles});
}

}  // namespace validate
