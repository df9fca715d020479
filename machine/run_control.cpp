// The host's run control for the next runs.
#include "qelkern/runcontrol.h"

CRunControl* pRunControl = nullptr;
