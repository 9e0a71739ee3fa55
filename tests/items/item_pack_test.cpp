// Item packs: the bag's stacks and inner bags, the cursor exchange, the
// equipment slots, shop stock, and ids the item database does not know.
#include <gtest/gtest.h>

#include "../model_db.h"
#include "items/item_pack.h"

namespace {

enum : int32_t { HERB = 1, ELIXIR, SWORD, MAIL, CHARM, SMALL_BAG, BIG_BAG, LETTER, TONIC, HUGE_BAG, BOOK, UNKNOWN = 99 };

class Packs : public ::testing::Test {
protected:
    CTestDatabases m_db{{TestItem("herb", ITEM_POTION), TestItem("elixir", ITEM_POTION),
                         TestItem("sword", ITEM_WEAPON), TestItem("mail", ITEM_ARMOUR),
                         TestItem("charm", ITEM_BALDRIC), TestItem("small bag", ITEM_BAG3),
                         TestItem("big bag", ITEM_BAG4), TestItem("letter", ITEM_PLAIN),
                         TestItem("tonic", ITEM_POTION), TestItem("huge bag", ITEM_BAG5),
                         TestItem("book", ITEM_BOOK)},
                        {}};
};

// Fills every empty grid of the bag's own with letters.
void FillGrids(CUserItemPack& bag) {
    for (int32_t g = 0; g < bag.GetSize(); ++g)
        if (bag.GetAt(g) == 0) bag.PutAt(LETTER, g);
}

}  // namespace

TEST_F(Packs, PotionsStackToFiveInTheBagsOwnGrids) {
    CUserItemPack bag(9);
    for (int i = 0; i < 6; ++i) ASSERT_TRUE(bag.Add(HERB));
    EXPECT_EQ(bag.GetAt(0), HERB);
    EXPECT_EQ(bag.GetCount(0), 5);
    EXPECT_EQ(bag.GetAt(1), HERB);
    EXPECT_EQ(bag.GetCount(1), 1);
    EXPECT_EQ(bag.CountOf(HERB), 6);
    // Another potion starts its own stack; other items never stack.
    ASSERT_TRUE(bag.Add(ELIXIR));
    EXPECT_EQ(bag.GetAt(2), ELIXIR);
    ASSERT_TRUE(bag.Add(SWORD));
    ASSERT_TRUE(bag.Add(SWORD));
    EXPECT_EQ(bag.GetAt(3), SWORD);
    EXPECT_EQ(bag.GetAt(4), SWORD);
    EXPECT_EQ(bag.GetCount(3), 1);
    // A stack with room is found even behind full stacks, and when the bag has no
    // empty grid left.
    FillGrids(bag);
    ASSERT_TRUE(bag.Add(HERB));
    EXPECT_EQ(bag.GetCount(1), 2);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(bag.Add(HERB));
    EXPECT_EQ(bag.GetCount(1), 5);
    EXPECT_FALSE(bag.Add(HERB));  // every stack full, no grid, no inner bag
    EXPECT_FALSE(bag.Add(TONIC));
    EXPECT_EQ(bag.CountOf(HERB), 10);

    // Inner bags hold one potion per slot.
    CUserItemPack bag2(2);
    ASSERT_TRUE(bag2.Add(SMALL_BAG));
    ASSERT_TRUE(bag2.Add(LETTER));
    ASSERT_TRUE(bag2.Add(HERB));
    ASSERT_TRUE(bag2.Add(HERB));
    CItemPack* inner = bag2.GetSubPack(0);
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(inner->GetAt(0), HERB);
    EXPECT_EQ(inner->GetAt(1), HERB);
    EXPECT_EQ(bag2.CountOf(HERB), 2);
}

TEST_F(Packs, BagItemsOwnInnerBagsAndNeverEnterOne) {
    CUserItemPack bag(3);
    ASSERT_TRUE(bag.Add(LETTER));
    ASSERT_TRUE(bag.Add(BIG_BAG));
    ASSERT_TRUE(bag.Add(SMALL_BAG));
    ASSERT_NE(bag.GetSubPack(1), nullptr);
    EXPECT_EQ(bag.GetSubPack(1)->GetSize(), 16);
    EXPECT_EQ(bag.GetSubPack(2)->GetSize(), 9);
    EXPECT_EQ(bag.GetSubPack(0), nullptr);
    EXPECT_EQ(bag.GetSubPack(3), nullptr);
    EXPECT_EQ(bag.GetSubPack(-1), nullptr);
    // No empty grid: a bag is refused though the inner bags have room.
    EXPECT_FALSE(bag.Add(BIG_BAG));
    EXPECT_FALSE(bag.Add(HUGE_BAG));
    // Anything else goes to the inner bags in grid order.
    ASSERT_TRUE(bag.Add(SWORD));
    EXPECT_EQ(bag.GetSubPack(1)->GetAt(0), SWORD);
    EXPECT_EQ(bag.GetSubPack(2)->CountOf(SWORD), 0);
    EXPECT_EQ(bag.CountOf(SWORD), 1);
    for (int i = 0; i < 15; ++i) ASSERT_TRUE(bag.Add(LETTER));
    ASSERT_TRUE(bag.Add(LETTER));  // the big bag is full: the small one takes it
    EXPECT_EQ(bag.GetSubPack(2)->GetAt(0), LETTER);
    EXPECT_EQ(bag.CountOf(LETTER), 1 + 16);

    // A huge bag gets 25 slots; a grid emptied and refilled gets a fresh one.
    CUserItemPack one(1);
    ASSERT_TRUE(one.Add(HUGE_BAG));
    EXPECT_EQ(one.GetSubPack(0)->GetSize(), 25);
    ASSERT_TRUE(one.Add(CHARM));
    one.RemoveAt(0);
    EXPECT_EQ(one.GetSubPack(0), nullptr);
    ASSERT_TRUE(one.Add(SMALL_BAG));
    EXPECT_EQ(one.GetSubPack(0)->GetSize(), 9);
    EXPECT_EQ(one.CountOf(CHARM), 0);
}

TEST_F(Packs, RemovingFromTheBag) {
    CUserItemPack bag(2);
    ASSERT_TRUE(bag.Add(BIG_BAG));
    ASSERT_TRUE(bag.Add(LETTER));
    ASSERT_TRUE(bag.Add(SWORD));
    ASSERT_TRUE(bag.Add(HERB));
    ASSERT_TRUE(bag.Add(HERB));
    EXPECT_EQ(bag.CountOf(HERB), 2);
    // Remove takes from a grid first, then from the inner bags.
    ASSERT_TRUE(bag.Remove(LETTER));
    EXPECT_EQ(bag.GetAt(1), 0);
    ASSERT_TRUE(bag.Remove(SWORD));
    EXPECT_EQ(bag.GetSubPack(0)->GetAt(0), 0);
    EXPECT_FALSE(bag.Remove(SWORD));
    EXPECT_FALSE(bag.Remove(0));
    // The last copy of a bag item takes its contents with it.
    bag.RemoveAt(0);
    EXPECT_EQ(bag.GetAt(0), 0);
    EXPECT_EQ(bag.GetSubPack(0), nullptr);
    EXPECT_EQ(bag.CountOf(HERB), 0);

    // A stack loses one copy at a time and the grid's count never drops below 1.
    CUserItemPack stack(1);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(stack.Add(ELIXIR));
    stack.RemoveAt(0);
    EXPECT_EQ(stack.GetCount(0), 2);
    ASSERT_TRUE(stack.Remove(ELIXIR));
    EXPECT_EQ(stack.GetCount(0), 1);
    EXPECT_EQ(stack.GetAt(0), ELIXIR);
    stack.RemoveAt(0);
    EXPECT_EQ(stack.GetAt(0), 0);
    EXPECT_EQ(stack.GetCount(0), 1);
    stack.RemoveAt(0);  // an empty grid stays empty
    stack.RemoveAt(7);  // outside: nothing
    stack.RemoveAt(-1);
    EXPECT_EQ(stack.GetCount(0), 1);
    EXPECT_EQ(stack.GetCount(1), 0);
}

TEST_F(Packs, CountOfAddsStacksAndInnerBags) {
    CUserItemPack bag(4);
    for (int i = 0; i < 7; ++i) ASSERT_TRUE(bag.Add(HERB));  // 5 + 2
    bag.RemoveAt(0);
    bag.RemoveAt(0);  // 3 + 2
    ASSERT_TRUE(bag.Add(SMALL_BAG));
    ASSERT_TRUE(bag.GetSubPack(2)->Add(HERB));
    EXPECT_EQ(bag.GetCount(0), 3);
    EXPECT_EQ(bag.GetCount(1), 2);
    EXPECT_EQ(bag.CountOf(HERB), 6);
    EXPECT_EQ(bag.CountOf(SMALL_BAG), 1);
    EXPECT_EQ(bag.CountOf(0), 0);
}

TEST_F(Packs, ClickGridExchangesWithTheCursor) {
    CUserItemPack bag(4);
    ASSERT_TRUE(bag.Add(SWORD));
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(bag.Add(HERB));
    int32_t hand = -7;
    // Empty hand on a single item: taken out.
    ASSERT_TRUE(bag.ClickGrid(0, 0, hand));
    EXPECT_EQ(hand, SWORD);
    EXPECT_EQ(bag.GetAt(0), 0);
    // Put it into an empty grid.
    ASSERT_TRUE(bag.ClickGrid(SWORD, 2, hand));
    EXPECT_EQ(hand, 0);
    EXPECT_EQ(bag.GetAt(2), SWORD);
    // A held item swaps with a single one.
    ASSERT_TRUE(bag.ClickGrid(MAIL, 2, hand));
    EXPECT_EQ(hand, SWORD);
    EXPECT_EQ(bag.GetAt(2), MAIL);
    // A stack gives one copy to an empty hand and refuses a swap.
    ASSERT_TRUE(bag.ClickGrid(0, 1, hand));
    EXPECT_EQ(hand, HERB);
    EXPECT_EQ(bag.GetCount(1), 2);
    EXPECT_FALSE(bag.ClickGrid(SWORD, 1, hand));
    EXPECT_EQ(hand, SWORD);
    EXPECT_EQ(bag.GetAt(1), HERB);
    EXPECT_EQ(bag.GetCount(1), 2);
    // A potion goes back onto its own stack, up to 5.
    ASSERT_TRUE(bag.ClickGrid(HERB, 1, hand));
    EXPECT_EQ(hand, 0);
    EXPECT_EQ(bag.GetCount(1), 3);
    bag.SetCount(1, 5);
    EXPECT_FALSE(bag.ClickGrid(HERB, 1, hand));
    EXPECT_EQ(bag.GetCount(1), 5);
    // Anything else onto itself, or an empty hand on an empty grid: refused.
    EXPECT_FALSE(bag.ClickGrid(MAIL, 2, hand));
    EXPECT_FALSE(bag.ClickGrid(0, 3, hand));
    // Outside the bag, or an unknown id: refused.
    EXPECT_FALSE(bag.ClickGrid(SWORD, 4, hand));
    EXPECT_FALSE(bag.ClickGrid(SWORD, -1, hand));
    EXPECT_FALSE(bag.ClickGrid(UNKNOWN, 3, hand));
    EXPECT_EQ(bag.GetAt(3), 0);
}

TEST_F(Packs, CarriedInnerBagsMoveWithTheirBagItems) {
    CUserItemPack bag(3);
    ASSERT_TRUE(bag.Add(SMALL_BAG));
    ASSERT_TRUE(bag.Add(BIG_BAG));
    ASSERT_TRUE(bag.GetSubPack(0)->Add(SWORD));
    ASSERT_TRUE(bag.GetSubPack(1)->Add(MAIL));
    CItemPack* small = bag.GetSubPack(0);
    CItemPack* big = bag.GetSubPack(1);
    // Pick the small bag up and put it into grid 2.
    int32_t hand = 0;
    ASSERT_TRUE(bag.ClickGrid(0, 0, hand));
    bag.TakeSubPack(0);
    EXPECT_EQ(bag.GetSubPack(0), nullptr);
    EXPECT_EQ(bag.GetCarriedPack(), small);
    EXPECT_EQ(bag.CountOf(SWORD), 0);  // carried contents are not in the bag
    ASSERT_TRUE(bag.ClickGrid(hand, 2, hand));
    bag.SetSubPack(2, bag.GetCarriedPack());
    EXPECT_EQ(bag.GetCarriedPack(), nullptr);
    EXPECT_EQ(bag.GetSubPack(2), small);
    EXPECT_EQ(bag.CountOf(SWORD), 1);
    // Swap two bag items: the inner bags trade places through the cursor.
    ASSERT_TRUE(bag.ClickGrid(0, 2, hand));
    bag.TakeSubPack(2);
    ASSERT_TRUE(bag.ClickGrid(hand, 1, hand));
    EXPECT_EQ(hand, BIG_BAG);
    bag.TakeSubPack(1);
    EXPECT_EQ(bag.GetSubPack(1), small);
    EXPECT_EQ(bag.GetCarriedPack(), big);
    // Dropped on the ground: the carried contents are gone.
    bag.DiscardCarriedPack();
    EXPECT_EQ(bag.GetCarriedPack(), nullptr);
    EXPECT_EQ(bag.CountOf(MAIL), 0);
    // Moving an inner bag between grids, giving a new one, and clearing.
    bag.SetSubPack(0, bag.GetSubPack(1));
    EXPECT_EQ(bag.GetSubPack(0), small);
    EXPECT_EQ(bag.GetSubPack(1), nullptr);
    bag.SetSubPack(5, new CItemPack(9));  // outside: destroyed, nothing changes
    bag.SetSubPack(5, bag.GetSubPack(0)); // outside: stays where it is
    EXPECT_EQ(bag.GetSubPack(0), small);
    bag.SetSubPack(0, nullptr);
    EXPECT_EQ(bag.GetSubPack(0), nullptr);
}

TEST_F(Packs, UserPutAtAndSetCountKeepTheGridsConsistent) {
    CUserItemPack bag(2);
    for (int i = 0; i < 4; ++i) ASSERT_TRUE(bag.Add(HERB));
    // A different id replaces the whole stack with one copy.
    EXPECT_EQ(bag.PutAt(SWORD, 0), HERB);
    EXPECT_EQ(bag.GetCount(0), 1);
    EXPECT_EQ(bag.CountOf(HERB), 0);
    // A bag item stored by PutAt carries an empty inner bag; replacing it drops it.
    EXPECT_EQ(bag.PutAt(BIG_BAG, 1), 0);
    ASSERT_NE(bag.GetSubPack(1), nullptr);
    EXPECT_EQ(bag.GetSubPack(1)->GetSize(), 16);
    EXPECT_EQ(bag.PutAt(0, 1), BIG_BAG);
    EXPECT_EQ(bag.GetSubPack(1), nullptr);
    EXPECT_EQ(bag.PutAt(UNKNOWN, 1), UNKNOWN);
    EXPECT_EQ(bag.GetAt(1), 0);
    // Counts: potions 1..5, anything else 1.
    bag.PutAt(TONIC, 1);
    bag.SetCount(1, 9);
    EXPECT_EQ(bag.GetCount(1), 5);
    bag.SetCount(1, -3);
    EXPECT_EQ(bag.GetCount(1), 1);
    bag.SetCount(0, 4);
    EXPECT_EQ(bag.GetCount(0), 1);
    bag.SetCount(2, 4);  // outside: nothing
}

TEST_F(Packs, EquipmentSlotsTakeTheirKindOnly) {
    CWeaponItemPack eq;
    EXPECT_EQ(eq.GetSize(), 4);
    // A baldric in the armour slot is refused: its own id comes back.
    EXPECT_EQ(eq.PutAt(CHARM, 1), CHARM);
    EXPECT_EQ(eq.GetAt(1), 0);
    EXPECT_EQ(eq.PutAt(CHARM, 2), 0);
    EXPECT_EQ(eq.PutAt(CHARM, 3), 0);
    EXPECT_EQ(eq.PutAt(MAIL, 1), 0);
    EXPECT_EQ(eq.PutAt(SWORD, 0), 0);
    EXPECT_EQ(eq.PutAt(SWORD, 0), SWORD);  // the previous content comes back
    EXPECT_EQ(eq.PutAt(SWORD, 1), SWORD);
    EXPECT_EQ(eq.GetAt(1), MAIL);
    for (int32_t id : {HERB, BOOK, LETTER, SMALL_BAG, UNKNOWN}) {
        for (int32_t slot = 0; slot < 4; ++slot) EXPECT_EQ(eq.PutAt(id, slot), id);
    }
    EXPECT_EQ(eq.PutAt(SWORD, 4), SWORD);
    EXPECT_EQ(eq.PutAt(SWORD, -1), SWORD);
    // 0 clears and hands back what was there.
    EXPECT_EQ(eq.PutAt(0, 1), MAIL);
    EXPECT_EQ(eq.GetAt(1), 0);
    EXPECT_EQ(eq.GetAt(0), SWORD);
    EXPECT_EQ(eq.GetAt(2), CHARM);
    EXPECT_EQ(eq.GetAt(4), -1);
    EXPECT_EQ(eq.CountOf(CHARM), 2);
    EXPECT_TRUE(CWeaponItemPack::SlotFits(ITEM_BALDRIC, 3));
    EXPECT_FALSE(CWeaponItemPack::SlotFits(ITEM_WEAPON, 1));
}

TEST_F(Packs, ShopStockAndPlainPacks) {
    CSellerItemPack potions(ITEM_POTION);
    ASSERT_EQ(potions.GetSize(), 3);
    EXPECT_EQ(potions.GetAt(0), HERB);
    EXPECT_EQ(potions.GetAt(1), ELIXIR);
    EXPECT_EQ(potions.GetAt(2), TONIC);
    EXPECT_EQ(potions.GetAt(3), -1);
    CSellerItemPack bags(ITEM_BAG4);
    ASSERT_EQ(bags.GetSize(), 1);
    EXPECT_EQ(bags.GetAt(0), BIG_BAG);
    EXPECT_EQ(CSellerItemPack(42).GetSize(), 0);

    CItemPack plain(2);
    EXPECT_FALSE(plain.Add(0));
    EXPECT_FALSE(plain.Add(UNKNOWN));
    EXPECT_FALSE(plain.Add(-HERB));
    ASSERT_TRUE(plain.Add(HERB));
    ASSERT_TRUE(plain.Add(HERB));  // a plain pack never stacks
    EXPECT_FALSE(plain.Add(SWORD));
    EXPECT_EQ(plain.CountOf(HERB), 2);
    EXPECT_EQ(plain.PutAt(SWORD, 1), HERB);
    EXPECT_EQ(plain.PutAt(UNKNOWN, 1), UNKNOWN);
    EXPECT_EQ(plain.PutAt(SWORD, 2), SWORD);
    EXPECT_EQ(plain.GetAt(1), SWORD);
    EXPECT_EQ(plain.GetAt(-1), -1);
    ASSERT_TRUE(plain.Remove(HERB));
    EXPECT_EQ(plain.GetAt(0), 0);
    EXPECT_FALSE(plain.Remove(0));  // an empty slot is not an item
    EXPECT_EQ(CItemPack(-3).GetSize(), 0);
}

TEST(PacksWithoutDatabase, EveryIdIsRefused) {
    CItemDataBase* saved = g_pItemDB;
    g_pItemDB = nullptr;
    CUserItemPack bag(2);
    EXPECT_FALSE(bag.Add(1));
    EXPECT_EQ(bag.PutAt(1, 0), 1);
    EXPECT_EQ(bag.GetAt(0), 0);
    EXPECT_EQ(CSellerItemPack(0).GetSize(), 0);
    EXPECT_EQ(ItemTypeOf(1), -1);
    g_pItemDB = saved;
}
