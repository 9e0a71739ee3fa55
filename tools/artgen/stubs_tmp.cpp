#include "output.h"
namespace art {
void GenUi(Output&) {}
void GenItems(Output&) {}
void GenSkills(Output&) {}
void GenCursor(Output&) {}
}
