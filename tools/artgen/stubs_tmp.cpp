#include "output.h"
namespace art {
void GenObjects(Output&, const std::string&) {}
void GenUi(Output&) {}
void GenItems(Output&) {}
void GenSkills(Output&) {}
void GenCursor(Output&) {}
}
