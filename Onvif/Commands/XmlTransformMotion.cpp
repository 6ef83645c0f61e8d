// The answers: motion, relays and digital inputs.
#include "XmlTransform.h"
