// Until the editor exists the effect runs without one; every editor call in
// the effect and the frame is guarded, and the record then lacks the editor flag.
#include "SorvaneDecoder.h"

AEffEditor* createEditor(AudioEffectX* /*effect*/) { return nullptr; }
