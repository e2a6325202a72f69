// The effect's one editor, created with it. Creating it opens nothing on
// the display: only the host's open request does.
#include "MyEditor.h"
#include "SorvaneDecoder.h"

AEffEditor* createEditor(AudioEffectX*, sorvane::EditorLink& link) { return new MyEditor(&link); }
