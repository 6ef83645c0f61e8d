// The answers: the media commands.
#include "XmlTransform.h"
