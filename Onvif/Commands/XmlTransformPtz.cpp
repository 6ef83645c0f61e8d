// The answers: the PTZ and cruise commands.
#include "XmlTransform.h"
