#include "conf/ConfView.h"
#include "support/TestHeaders.h"

namespace {

using Model = std::map<std::string, std::string>;

ConfCatalogue smallCatalogue() {
    ConfCatalogue catalogue;
    for (const char* name : {"cpus", "dpi", "status.adb_port", "z"}) {
        catalogue.registerInstance(name, {ConfType::String, std::string("default ") + name});
    }
    for (const char* name : {"dpi", "guid", "z"}) {
        catalogue.registerGlobal(name, {ConfType::String, std::string("global ") + name});
    }
    return catalogue;
}

class ConfViewTest : public ::testing::Test {
 protected:
    ConfKey key(std::string_view text) const { return confFindKey(catalogue, text); }

    void stage(std::string_view text, std::string_view to) {
        view.stage(view.value(key(text)), to);
    }
    void set(std::string_view text, std::string_view to) {
        view.set(view.knownValue(key(text)), to);
    }
    void remove(std::string_view text) { view.remove(view.value(key(text))); }

    // A key's committed or staged value, if any.
    std::optional<std::string> committed(std::string_view text) const {
        const ConfValue* const value = view.find(key(text));
        if (value == nullptr || !value->isCommitted) return std::nullopt;
        return value->committed;
    }
    std::optional<std::string> staged(std::string_view text) const {
        const ConfValue* const value = view.find(key(text));
        if (value == nullptr || value->staged == nullptr) return std::nullopt;
        return *value->staged;
    }

    Model allCommitted() const {
        return all(
            [](const ConfValue& value) { return value.isCommitted ? &value.committed : nullptr; });
    }
    Model allStaged() const {
        return all([](const ConfValue& value) { return value.staged.get(); });
    }

    const ConfCatalogue catalogue = smallCatalogue();
    ConfView view{catalogue};

 private:
    // Keys must come in byte order.
    template <typename TextOf>
    Model all(TextOf textOf) const {
        Model texts;
        std::string last;
        view.forEach([&](std::string_view prefix, std::string_view name, const ConfValue& value) {
            const std::string text = std::string(prefix).append(name);
            if (!last.empty()) EXPECT_LT(last, text);
            last = text;
            const std::string* const found = textOf(value);
            if (found != nullptr) texts[text] = *found;
        });
        return texts;
    }
};

// Keys at every border of the grouping: instances that are prefixes of each other, characters
// before and after ".", keys without a second ".", global keys before and after the instances.
std::string randomKey(std::mt19937& random) {
    static const char* const instances[] = {"A", "A-", "A0", "AB", "", "a", "\xC3\xA9", "Z_1"};
    static const char* const names[] = {"dpi", "cpus", "status.adb_port", "", "z", "\xFF"};
    const auto pick = [&random](const auto& list) { return list[random() % std::size(list)]; };
    switch (random() % 4) {
        case 0:
            return std::string("vtr.") + pick(names);
        case 1:
            return std::string("vtr.instance.") + pick(instances);
        case 2:
            return std::string("vtr.instancf.") + pick(names);
        default:
            return std::string("vtr.instance.") + pick(instances) + "." + pick(names);
    }
}

// One of a view's two maps of values.
struct Values {
    std::function<void(std::string_view, std::string_view)> set;
    std::function<void(std::string_view)> erase;
    std::function<void()> clear;  // null for the map that cannot be cleared
    std::function<std::optional<std::string>(std::string_view)> find;
    std::function<Model()> all;
};

// Plays random changes on the values and on an ordered map, and compares the two.
void expectOrderedMap(std::mt19937::result_type seed, const Values& values) {
    std::mt19937 random(seed);
    Model model;
    for (int step = 0; step < 10'000; ++step) {
        const std::string text = randomKey(random);
        if (values.clear && random() % 500 == 0) {
            values.clear();
            model.clear();
        } else if (random() % 3 == 0) {
            values.erase(text);
            model.erase(text);
        } else {
            model[text] = std::to_string(random() % 100);
            values.set(text, model[text]);
        }
        const std::string probe = randomKey(random);
        const auto expected = model.find(probe);
        ASSERT_EQ(values.find(probe),
                  expected == model.end() ? std::nullopt : std::optional(expected->second))
            << probe;
        if (step % 50 == 0) ASSERT_EQ(values.all(), model);
    }
}

}  // namespace

TEST_F(ConfViewTest, StagedValuesBehaveAsAnOrderedMap) {
    expectOrderedMap(7,
                     {[this](auto text, auto value) { stage(text, value); },
                      [this](auto text) { remove(text); }, [this] { view.discardChanges(); },
                      [this](auto text) { return staged(text); }, [this] { return allStaged(); }});
    EXPECT_EQ(allCommitted(), Model{});
}

TEST_F(ConfViewTest, CommittedValuesBehaveAsAnOrderedMap) {
    expectOrderedMap(
        8, {[this](auto text, auto value) { view.value(key(text)).commit(value); },
            [this](auto text) { view.value(key(text)).erase(); }, nullptr,
            [this](auto text) { return committed(text); }, [this] { return allCommitted(); }});
    EXPECT_EQ(allStaged(), Model{});
}

TEST_F(ConfViewTest, AMergeAppliesEveryChangeToTheCommittedValues) {
    for (const char* text : {"vtr.guid", "vtr.z", "vtr.instance.A.dpi", "vtr.instance.A.z", "x"}) {
        stage(text, "old");
    }
    view.mergeChanges();
    for (const char* text : {"vtr.guid", "vtr.instance.A.z", "vtr.instance.B.dpi", "x", "y"}) {
        stage(text, "new");
    }
    remove("vtr.z");
    remove("vtr.instance.C.dpi");
    view.mergeChanges();
    EXPECT_FALSE(view.hasChanges());
    EXPECT_EQ(allStaged(), Model{});
    EXPECT_EQ(allCommitted(), (Model{{"vtr.guid", "new"},
                                     {"vtr.instance.A.dpi", "old"},
                                     {"vtr.instance.A.z", "new"},
                                     {"vtr.instance.B.dpi", "new"},
                                     {"x", "new"},
                                     {"y", "new"}}));
    stage("vtr.z", "back");
    view.mergeChanges();
    EXPECT_EQ(committed("vtr.z"), "back");
}

TEST_F(ConfViewTest, AValueThatIsStagedAfterItsRemovalIsRemoved) {
    stage("vtr.guid", "old");
    view.mergeChanges();
    remove("vtr.guid");
    stage("vtr.guid", "new");
    view.mergeChanges();
    EXPECT_EQ(allCommitted(), Model{});
    EXPECT_FALSE(view.hasChanges());
}

TEST_F(ConfViewTest, ChangesArePendingUntilTheLastIsTakenBack) {
    stage("vtr.instance.A.dpi", "2");
    stage("foreign", "1");
    EXPECT_TRUE(view.hasChanges());
    view.mergeChanges();
    EXPECT_FALSE(view.hasChanges());
    set("vtr.instance.A.dpi", "3");
    set("foreign", "3");
    set("foreign", "4");
    EXPECT_EQ(staged("foreign"), "4");
    set("foreign", "1");
    EXPECT_EQ(staged("foreign"), std::nullopt);
    EXPECT_TRUE(view.hasChanges());
    set("vtr.instance.A.dpi", "2");
    EXPECT_FALSE(view.hasChanges());
    stage("vtr.guid", "x");
    remove("vtr.guid");
    remove("vtr.guid");
    EXPECT_TRUE(view.hasChanges());
    EXPECT_EQ(staged("vtr.guid"), std::nullopt);
    set("vtr.guid", "x");
    EXPECT_FALSE(view.find(key("vtr.guid"))->isRemoved);
    EXPECT_TRUE(view.hasChanges());
    remove("vtr.z");
    view.discardChanges();
    EXPECT_FALSE(view.hasChanges());
    EXPECT_FALSE(view.find(key("vtr.z"))->isRemoved);
}

TEST_F(ConfViewTest, AnEmptyValueIsAValue) {
    set("vtr.guid", "");
    EXPECT_EQ(staged("vtr.guid"), "");
    view.mergeChanges();
    EXPECT_EQ(committed("vtr.guid"), "");
    set("vtr.guid", "");
    EXPECT_FALSE(view.hasChanges());
    remove("vtr.guid");
    view.mergeChanges();
    EXPECT_EQ(committed("vtr.guid"), std::nullopt);
}

TEST_F(ConfViewTest, ANewInstanceGetsOnlyTheDefaultsThatItLacks) {
    stage("vtr.instance.X.dpi", "own");
    stage("vtr.instance.X.foreign", "own");
    view.mergeChanges();
    view.addInstance("X");
    EXPECT_EQ(allCommitted(), (Model{{"vtr.instance.X.cpus", "default cpus"},
                                     {"vtr.instance.X.dpi", "own"},
                                     {"vtr.instance.X.foreign", "own"},
                                     {"vtr.instance.X.status.adb_port", "default status.adb_port"},
                                     {"vtr.instance.X.z", "default z"}}));
}

TEST_F(ConfViewTest, SettingAKeyMakesItsInstanceKnownWhetherItIsDeclaredOrNot) {
    set("vtr.instance.A.dpi", "1");
    set("vtr.instance.B.foreign", "1");
    set("vtr.instance.C", "1");
    set("vtr.guid", "1");
    EXPECT_EQ(view.instances(), (ConfView::Names{"A", "B", "C"}));
    for (const char* name : {"A", "B", "C"}) {
        EXPECT_EQ(committed(confInstancePrefix(name) + "cpus"), "default cpus");
    }
    EXPECT_EQ(allStaged(), (Model{{"vtr.guid", "1"},
                                  {"vtr.instance.A.dpi", "1"},
                                  {"vtr.instance.B.foreign", "1"},
                                  {"vtr.instance.C", "1"}}));
}

TEST_F(ConfViewTest, AKnownInstanceIsNotFilledAgain) {
    view.addInstance("X");
    view.value(key("vtr.instance.X.dpi")).erase();
    view.addInstance("X");
    EXPECT_EQ(committed("vtr.instance.X.dpi"), std::nullopt);
    view.forgetInstances();
    view.addInstance("X");
    EXPECT_EQ(committed("vtr.instance.X.dpi"), "default dpi");
}

TEST_F(ConfViewTest, InstancesAreListedByNameAndVisitedByPrefix) {
    std::vector<std::string> names{"A", "A-", "A0"};
    do {
        ConfView other(catalogue);
        other.commitGlobalDefaults();
        for (const std::string& name : names) other.addInstance(name);
        EXPECT_EQ(other.instances(), (ConfView::Names{"A", "A-", "A0"}));
        std::vector<std::string> prefixes{"vtr."};
        other.forEach([&](std::string_view prefix, std::string_view, const ConfValue&) {
            if (prefixes.back() != prefix) prefixes.emplace_back(prefix);
        });
        EXPECT_EQ(prefixes, (std::vector<std::string>{"vtr.", "vtr.instance.A-.", "vtr.instance.A.",
                                                      "vtr.instance.A0.", "vtr."}));
    } while (std::next_permutation(names.begin(), names.end()));
}

TEST_F(ConfViewTest, AnInstanceWithADotInItsNameHasItsKeysInOrderAndOnce) {
    stage("vtr.instance.A.B.z", "own");
    view.mergeChanges();
    view.addInstance("A");
    view.addInstance("A.B");
    EXPECT_EQ(view.instances(), (ConfView::Names{"A", "A.B"}));
    EXPECT_EQ(allCommitted(),
              (Model{{"vtr.instance.A.B.cpus", "default cpus"},
                     {"vtr.instance.A.B.dpi", "default dpi"},
                     {"vtr.instance.A.B.status.adb_port", "default status.adb_port"},
                     {"vtr.instance.A.B.z", "own"},
                     {"vtr.instance.A.cpus", "default cpus"},
                     {"vtr.instance.A.dpi", "default dpi"},
                     {"vtr.instance.A.status.adb_port", "default status.adb_port"},
                     {"vtr.instance.A.z", "default z"}}));
}

TEST_F(ConfViewTest, AForgottenInstanceKeepsItsValuesAndTheEmptyNameIsAName) {
    EXPECT_FALSE(view.isKnown(""));
    view.addInstance("");
    view.makeKnown("A");
    EXPECT_TRUE(view.isKnown(""));
    EXPECT_EQ(view.instances(), (ConfView::Names{"", "A"}));
    EXPECT_EQ(allCommitted().size(), 4u) << "a name alone brings no values";
    view.forgetInstance("");
    view.forgetInstance("none");
    EXPECT_EQ(view.instances(), ConfView::Names{"A"});
    EXPECT_EQ(allCommitted().size(), 4u);
    view.forgetInstances();
    EXPECT_EQ(view.instances(), ConfView::Names{});
}

TEST_F(ConfViewTest, GlobalDefaultsReplaceCommittedValues) {
    stage("vtr.guid", "own");
    view.mergeChanges();
    stage("vtr.z", "staged");
    view.commitGlobalDefaults();
    EXPECT_EQ(
        allCommitted(),
        (Model{{"vtr.dpi", "global dpi"}, {"vtr.guid", "global guid"}, {"vtr.z", "global z"}}));
    EXPECT_EQ(staged("vtr.z"), "staged");
}
