#include "output.h"
namespace art {
void GenItems(Output&) {}
void GenSkills(Output&) {}
void GenCursor(Output&) {}
}
