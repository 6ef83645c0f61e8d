// The answers: the imaging commands.
#include "XmlTransform.h"
