// Item packs: a fixed number of slots, each holding an item id (0 = empty).
//   CItemPack        the plain pack (shop stock, inner bags)
//   CUserItemPack    the hero's bag: stacks of potions and whole inner bags
//   CWeaponItemPack  the four equipment slots, each taking one kind of item
//   CSellerItemPack  a shop's stock: every item id of one type, in id order
// Packs hold ids, never item objects; item facts come from g_pItemDB. Ids that
// the item database does not know are refused by Add and PutAt.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

// Potions stack up to this many copies in one grid of the hero's bag.
constexpr int32_t kMaxPotionStack = 5;

// True when id names a record of g_pItemDB (1 .. Count).
bool IsItemId(int32_t id);
// The item's type (EItemType), or -1 for an unknown id.
int32_t ItemTypeOf(int32_t id);
// Slots of the inner bag a bag item of this type carries: 9, 16 or 25; 0 for
// types that are not bags.
int32_t InnerBagSlots(int32_t type);

class CItemPack {
public:
    explicit CItemPack(int32_t slots);
    virtual ~CItemPack();
    CItemPack(const CItemPack&) = delete;
    CItemPack& operator=(const CItemPack&) = delete;

    // Puts id into the first empty slot; false when full or id is unknown.
    virtual bool Add(int32_t id);
    // Empties the slot (nothing outside the pack).
    virtual void RemoveAt(int32_t slot);
    // Stores id (0 clears) in the slot and returns what was there. A refused
    // id (unknown, or a slot outside the pack) is returned unchanged.
    virtual int32_t PutAt(int32_t id, int32_t slot);
    // The id in the slot; -1 outside the pack.
    virtual int32_t GetAt(int32_t slot) const;
    // Clears the first slot holding id; false when none does.
    virtual bool Remove(int32_t id);
    // Number of copies of id in the pack (0 for id 0).
    virtual int32_t CountOf(int32_t id) const;

    int32_t GetSize() const { return int32_t(m_vecSlots.size()); }

protected:
    bool InPack(int32_t slot) const { return slot >= 0 && slot < GetSize(); }
    std::vector<int32_t> m_vecSlots;
};

// The hero's bag. Every grid has a count (1 or more; a grid holding an item holds
// that many copies) and, exactly while it holds a bag item, an inner bag it owns.
// Potions stack in the bag's own grids; inner bags hold one item per slot and
// never hold another bag. While a bag item is carried on the cursor its inner bag
// is held here as the carried inner bag.
class CUserItemPack : public CItemPack {
public:
    explicit CUserItemPack(int32_t grids);
    ~CUserItemPack() override;

    // Bag items take the first empty grid of the bag itself; potions join the
    // first stack of the same id with room; anything else takes the first empty
    // grid, then the first inner bag with room. False: the bag is full.
    bool Add(int32_t id) override;
    // Takes one copy out of the grid. The last copy of a bag item destroys its
    // inner bag with everything in it.
    void RemoveAt(int32_t grid) override;
    // Stores one copy of id in the grid. The grid's count becomes 1 when the id
    // changes; an inner bag is destroyed with a bag item replaced, and a bag item
    // stored here gets a new empty inner bag.
    int32_t PutAt(int32_t id, int32_t grid) override;
    // Removes one copy: from the first grid holding id, else from the first inner
    // bag holding it.
    bool Remove(int32_t id) override;
    // Copies in the grids (their counts) plus copies in the inner bags.
    int32_t CountOf(int32_t id) const override;

    // The grid's count; 0 outside the bag.
    int32_t GetCount(int32_t grid) const;
    // Sets a grid's count (saved games). Kept between 1 and the stack limit for
    // a potion, 1 for anything else.
    void SetCount(int32_t grid, int32_t count);
    // The grid's inner bag, or none (also outside the bag).
    CItemPack* GetSubPack(int32_t grid) const;
    // The grid's inner bag becomes the carried inner bag and the grid is left
    // without one. A bag that was already carried takes the grid's place, so a
    // swap of two bag items moves both inner bags.
    void TakeSubPack(int32_t grid);
    // Makes pack the grid's inner bag; the bag owns it from now on. Passing the
    // carried inner bag puts it down; passing another grid's inner bag moves it;
    // nullptr destroys the grid's inner bag. For a grid outside the bag the
    // carried inner bag stays carried and any other pack is destroyed.
    void SetSubPack(int32_t grid, CItemPack* pack);
    CItemPack* GetCarriedPack() const { return m_pCarried.get(); }
    // Destroys the carried inner bag with its contents (the bag item was dropped).
    void DiscardCarriedPack() { m_pCarried.reset(); }

    // The exchange between the item on the cursor (held) and a grid: a swap, one
    // copy taken off a stack, or one potion put onto its stack. hand receives
    // what the cursor holds afterwards (held itself when refused). False when
    // nothing changed.
    bool ClickGrid(int32_t held, int32_t grid, int32_t& hand);

private:
    void ClearGrid(int32_t grid);
    std::vector<int32_t> m_vecCounts;
    std::vector<std::unique_ptr<CItemPack>> m_vecSubPacks;
    std::unique_ptr<CItemPack> m_pCarried;
};

// Equipment: slot 0 weapon (type 1), slot 1 armour (type 2), slots 2 and 3
// baldrics (type 3).
class CWeaponItemPack : public CItemPack {
public:
    enum { SLOT_WEAPON = 0, SLOT_ARMOUR = 1, SLOT_BALDRIC1 = 2, SLOT_BALDRIC2 = 3, SLOTS = 4 };
    CWeaponItemPack() : CItemPack(SLOTS) {}
    // True when an item of this type may sit in this slot.
    static bool SlotFits(int32_t type, int32_t slot);
    // id 0 clears the slot and returns what was there. An item that does not fit
    // the slot is refused: nothing changes and id itself is returned.
    int32_t PutAt(int32_t id, int32_t slot) override;
};

// A shop's stock: every item id of one type in the item database, in id order.
class CSellerItemPack : public CItemPack {
public:
    explicit CSellerItemPack(int32_t type);
    int32_t Type() const { return m_nType; }

private:
    int32_t m_nType;
};
