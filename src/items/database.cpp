#include "items/database.h"

CItemDataBase* g_pItemDB = nullptr;
CSkillDataBase* g_pSkillDB = nullptr;
