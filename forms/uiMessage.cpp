#include "forms/uiMessage.h"

#include "forms/uiMessageLabels.h"
#include "foundations/text/utfEdit.h"

#include <atomic>
#include <memory>
#include <optional>
#include <utility>

namespace {

constexpr uint32_t startSize = 10;
constexpr size_t textBytesMost = size_t{64} << 10;

bool isButton(uiMessage::Buttons label)
{
    return label < uiMessage::Buttons::None;
}

}  // namespace

uiMessage::uiMessage(ctrlWindow* parent, const question& asked)
    : ctrlForm(parent, 0, 0, startSize, startSize, ctrlFloating | ctrlPerMonitor), Message(asked.Text)
{
    // What follows sends messages, behind which an owner that is to go would take this box with it. Run ends
    // it.
    StateSet(stateInMessage);
    utfTruncate(Message, textBytesMost);
    Caption(asked.Title);
    Centre();
    FrameStyle(0, frameMaximise | frameMaximiseToo | frameMinimise);
    for (const Buttons label : asked.Choice)
        AddButton(label);
    ShowOwner();
}

void uiMessage::AddButton(Buttons label)
{
    auto* button = new ctrlButton(this, uiMessageLabel(static_cast<size_t>(label)), ctrlMeasure);
    Row.push_back(button);
    // Never 0, which is the result of a run that goes on.
    const auto result = static_cast<int32_t>(Row.size());
    button->OnClick = [this, result] { ModalResult(result); };
    button->Show();
}

// The box needs something that is seen to stand on.
void uiMessage::ShowOwner() const
{
    ctrlWindow* top = nullptr;
    for (ctrlWindow* at = Parent(); at; at = at->Parent()) {
        if (at->IsVisible())
            return;
        top = at;
    }
    if (!top)
        return;
    const ctrlLife life(top);
    top->Show();
    if (life && top->HasState(stateMinimised))
        top->Show();
}

void uiMessage::CloseRequest()
{
    ModalResult(-1);
}

// --- Asking

struct uiMessage::record {
    explicit record(question asked) : Asked(std::move(asked)) {}

    question Asked;
    std::optional<ctrlLife> Parent;  // none for a box without
    iconSource Icon = nullptr;
    std::atomic<Buttons> Given{Buttons::None};
};

uiMessage::Buttons uiMessage::Ask(ctrlWindow* parent, iconSource icon, question asked, bool wait)
{
    // Shared: whoever is waited for may still hold it when the wait ends.
    const auto shared = std::make_shared<record>(std::move(asked));
    if (parent)
        shared->Parent.emplace(parent);
    shared->Icon = icon;
    const bool later = !wait && !Toolkit().IsInterfaceThread();
    Toolkit().Post([shared] { Answer(*shared); }, later);
    return later ? Buttons::None : shared->Given.load();
}

void uiMessage::Answer(record& asked)
{
    std::vector<Buttons>& choice = asked.Asked.Choice;
    std::erase_if(choice, [](Buttons label) { return !isButton(label); });
    if (choice.empty())
        choice.push_back(Buttons::OK);
    if (!asked.Parent) {
        asked.Given = Run(nullptr, 0, asked.Asked);
        return;
    }
    const ctrlLife life = *asked.Parent;
    ctrlWindow* const parent = life.Window();
    if (parent && !parent->HasState(stateClosing) && parent->Root()->HasState(stateMinimised))
        parent->Root()->Show();
    if (!life)
        return;
    asked.Given = Run(parent, asked.Icon ? asked.Icon(*parent) : 0, asked.Asked);
    if (life && !parent->HasState(stateClosing))
        parent->Focus();
}

uiMessage::Buttons uiMessage::Run(ctrlWindow* parent, iconId icon, const question& asked)
{
    auto* box = new uiMessage(parent, asked);
    // Nobody could ever answer a box that the system refuses to show.
    if (!box->Handle()) {
        delete box;
        return Buttons::None;
    }
    box->Icon(icon);
    box->StateClear(stateInMessage);
    const int32_t result = box->Modal(true);
    const auto index = static_cast<size_t>(result) - 1;
    return result > 0 && index < asked.Choice.size() ? asked.Choice[index] : Buttons::None;
}

void uiMessage::LabelFile(const std::u16string& path)
{
    uiMessageLabelFile(path);
}
