#include "items/item_pack.h"

#include "base/debug.h"
#include "items/database.h"

bool IsItemId(int32_t id) { return g_pItemDB && id >= 1 && id <= g_pItemDB->Count(); }

int32_t ItemTypeOf(int32_t id) { return IsItemId(id) ? g_pItemDB->Get(id).nType : -1; }

int32_t InnerBagSlots(int32_t type) {
    if (type < ITEM_BAG3 || type > ITEM_BAG5) return 0;
    return (type - 2) * (type - 2);
}

// ---- CItemPack ----

CItemPack::CItemPack(int32_t slots) : m_vecSlots(size_t(slots > 0 ? slots : 0), 0) {}

CItemPack::~CItemPack() = default;

bool CItemPack::Add(int32_t id) {
    if (!IsItemId(id)) return false;
    for (int32_t& s : m_vecSlots)
        if (s == 0) {
            s = id;
            return true;
        }
    return false;
}

void CItemPack::RemoveAt(int32_t slot) {
    if (InPack(slot)) m_vecSlots[size_t(slot)] = 0;
}

int32_t CItemPack::PutAt(int32_t id, int32_t slot) {
    if (!InPack(slot) || (id != 0 && !IsItemId(id))) return id;
    const int32_t old = m_vecSlots[size_t(slot)];
    m_vecSlots[size_t(slot)] = id;
    return old;
}

int32_t CItemPack::GetAt(int32_t slot) const { return InPack(slot) ? m_vecSlots[size_t(slot)] : -1; }

bool CItemPack::Remove(int32_t id) {
    if (id <= 0) return false;
    for (int32_t& s : m_vecSlots)
        if (s == id) {
            s = 0;
            return true;
        }
    return false;
}

int32_t CItemPack::CountOf(int32_t id) const {
    if (id <= 0) return 0;
    int32_t n = 0;
    for (int32_t s : m_vecSlots)
        if (s == id) ++n;
    return n;
}

// ---- CUserItemPack ----

CUserItemPack::CUserItemPack(int32_t grids)
    : CItemPack(grids), m_vecCounts(m_vecSlots.size(), 1), m_vecSubPacks(m_vecSlots.size()) {}

CUserItemPack::~CUserItemPack() = default;

void CUserItemPack::ClearGrid(int32_t grid) {
    m_vecSlots[size_t(grid)] = 0;
    m_vecCounts[size_t(grid)] = 1;
    m_vecSubPacks[size_t(grid)].reset();
}

bool CUserItemPack::Add(int32_t id) {
    const int32_t type = ItemTypeOf(id);
    if (type < 0) return false;
    const int32_t inner = InnerBagSlots(type);
    if (inner > 0) {
        // A bag goes only into the bag's own grids, never into an inner bag.
        for (int32_t g = 0; g < GetSize(); ++g) {
            if (m_vecSlots[size_t(g)] != 0) continue;
            m_vecSubPacks[size_t(g)] = std::make_unique<CItemPack>(inner);
            m_vecSlots[size_t(g)] = id;
            m_vecCounts[size_t(g)] = 1;
            DebugOut("add item1\n");
            return true;
        }
        return false;
    }
    if (type == ITEM_POTION) {
        for (int32_t g = 0; g < GetSize(); ++g)
            if (m_vecSlots[size_t(g)] == id && m_vecCounts[size_t(g)] < kMaxPotionStack) {
                ++m_vecCounts[size_t(g)];
                return true;
            }
    }
    for (int32_t g = 0; g < GetSize(); ++g)
        if (m_vecSlots[size_t(g)] == 0) {
            m_vecSlots[size_t(g)] = id;
            m_vecCounts[size_t(g)] = 1;
            return true;
        }
    for (const auto& sub : m_vecSubPacks)
        if (sub && sub->CItemPack::Add(id)) return true;
    return false;
}

void CUserItemPack::RemoveAt(int32_t grid) {
    if (!InPack(grid)) return;
    if (m_vecCounts[size_t(grid)] < 2)
        ClearGrid(grid);
    else
        --m_vecCounts[size_t(grid)];
}

int32_t CUserItemPack::PutAt(int32_t id, int32_t grid) {
    if (!InPack(grid) || (id != 0 && !IsItemId(id))) return id;
    const int32_t old = m_vecSlots[size_t(grid)];
    if (old == id) return old;
    ClearGrid(grid);
    m_vecSlots[size_t(grid)] = id;
    const int32_t inner = InnerBagSlots(ItemTypeOf(id));
    if (inner > 0) m_vecSubPacks[size_t(grid)] = std::make_unique<CItemPack>(inner);
    return old;
}

bool CUserItemPack::Remove(int32_t id) {
    if (id <= 0) return false;
    for (int32_t g = 0; g < GetSize(); ++g)
        if (m_vecSlots[size_t(g)] == id) {
            RemoveAt(g);
            return true;
        }
    for (const auto& sub : m_vecSubPacks)
        if (sub && sub->Remove(id)) return true;
    return false;
}

int32_t CUserItemPack::CountOf(int32_t id) const {
    if (id <= 0) return 0;
    int64_t n = 0;
    for (int32_t g = 0; g < GetSize(); ++g)
        if (m_vecSlots[size_t(g)] == id) n += m_vecCounts[size_t(g)];
    for (const auto& sub : m_vecSubPacks)
        if (sub) n += sub->CountOf(id);
    return n > INT32_MAX ? INT32_MAX : int32_t(n);
}

int32_t CUserItemPack::GetCount(int32_t grid) const { return InPack(grid) ? m_vecCounts[size_t(grid)] : 0; }

void CUserItemPack::SetCount(int32_t grid, int32_t count) {
    if (!InPack(grid)) return;
    const int32_t limit = ItemTypeOf(m_vecSlots[size_t(grid)]) == ITEM_POTION ? kMaxPotionStack : 1;
    m_vecCounts[size_t(grid)] = count < 1 ? 1 : count > limit ? limit : count;
}

CItemPack* CUserItemPack::GetSubPack(int32_t grid) const {
    return InPack(grid) ? m_vecSubPacks[size_t(grid)].get() : nullptr;
}

void CUserItemPack::TakeSubPack(int32_t grid) {
    if (!InPack(grid)) return;
    m_vecSubPacks[size_t(grid)].swap(m_pCarried);
}

void CUserItemPack::SetSubPack(int32_t grid, CItemPack* pack) {
    std::unique_ptr<CItemPack>* holder = nullptr;  // where pack lives now, if the bag owns it
    if (pack && pack == m_pCarried.get()) holder = &m_pCarried;
    for (auto& sub : m_vecSubPacks)
        if (pack && sub.get() == pack) holder = &sub;
    if (!InPack(grid)) {
        if (!holder) delete pack;  // handed over to a grid that does not exist
        return;
    }
    std::unique_ptr<CItemPack> owned = holder ? std::move(*holder) : std::unique_ptr<CItemPack>(pack);
    m_vecSubPacks[size_t(grid)] = std::move(owned);
}

bool CUserItemPack::ClickGrid(int32_t held, int32_t grid, int32_t& hand) {
    hand = held;
    if (!InPack(grid)) return false;
    if (held != 0 && !IsItemId(held)) return false;
    int32_t& slot = m_vecSlots[size_t(grid)];
    int32_t& count = m_vecCounts[size_t(grid)];
    if (slot != held) {
        if (count < 2) {
            hand = slot;
            slot = held;
            return true;
        }
        if (held != 0) return false;  // a stack cannot be swapped
        hand = slot;
        --count;
        return true;
    }
    if (held != 0 && count < kMaxPotionStack && ItemTypeOf(held) == ITEM_POTION) {
        ++count;
        hand = 0;
        return true;
    }
    return false;
}

// ---- CWeaponItemPack ----

bool CWeaponItemPack::SlotFits(int32_t type, int32_t slot) {
    switch (type) {
    case ITEM_WEAPON: return slot == SLOT_WEAPON;
    case ITEM_ARMOUR: return slot == SLOT_ARMOUR;
    case ITEM_BALDRIC: return slot == SLOT_BALDRIC1 || slot == SLOT_BALDRIC2;
    default: return false;
    }
}

int32_t CWeaponItemPack::PutAt(int32_t id, int32_t slot) {
    if (!InPack(slot)) return id;
    if (id != 0 && !SlotFits(ItemTypeOf(id), slot)) return id;
    const int32_t old = m_vecSlots[size_t(slot)];
    m_vecSlots[size_t(slot)] = id;
    return old;
}

// ---- CSellerItemPack ----

CSellerItemPack::CSellerItemPack(int32_t type) : CItemPack(0), m_nType(type) {
    if (!g_pItemDB) return;
    for (int32_t id = 1; id <= g_pItemDB->Count(); ++id)
        if (g_pItemDB->Get(id).nType == type) m_vecSlots.push_back(id);
}
