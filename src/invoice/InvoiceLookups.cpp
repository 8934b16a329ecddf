#include "invoice/InvoiceLookups.h"

#include "common/input/FormPlacement.h"
#include "core/Lifecycle.h"
#include "master/FrmUser.h"
#include "master/FrmUserList.h"

#include <QLineEdit>
#include <optional>

namespace nb {

namespace {

// A list dialog of the master library behind the SearchList contract.
template <class List> class DialogList : public SearchList {
public:
    explicit DialogList(QWidget* parent) : m_list(new List(parent)) {}
    ~DialogList() override { delete m_list; }
    void showBelow(QWidget* anchor) override {
        if (anchor) MoveFormUnder(m_list, anchor);
        m_list->exec();
    }

protected:
    List* m_list;
};

class UserList : public DialogList<FrmUserList> {
public:
    using DialogList::DialogList;
    int InitForm(QLineEdit* target, const QString& text, const QString&, int) override {
        m_list->SetObject(target);
        int result = 0;
        m_list->InitForm(text, result);
        return result;
    }
};

std::optional<InvoiceLookups>& slot() {
    static std::optional<InvoiceLookups> lookups;
    static const bool hooked = [] {
        registerResetHook([] { slot().reset(); });
        return true;
    }();
    Q_UNUSED(hooked);
    return lookups;
}

} // namespace

InvoiceLookups masterLookups() {
    InvoiceLookups l;
    l.userList = [](QWidget* parent) { return std::make_unique<UserList>(parent); };
    l.userEntry = [](QWidget* parent) {
        FrmUser form(parent);
        form.exec();
    };
    return l;
}

InvoiceLookups& invoiceLookups() {
    if (!slot()) slot() = masterLookups();
    return *slot();
}

void setInvoiceLookups(const InvoiceLookups& lookups) {
    slot() = lookups;
}

} // namespace nb
