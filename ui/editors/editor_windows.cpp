#include "ui/editors/editor_windows.h"

#include "ui/editors/accessory_list_editor.h"
#include "ui/editors/assignment_editor.h"
#include "ui/editors/route_editor.h"

#include <memory>

namespace hr::ui
{

namespace
{

std::unique_ptr<RouteEditor> routeEditor;
std::unique_ptr<AssignmentEditor> assignmentEditor;
std::unique_ptr<AccessoryListEditor> accessoryListEditor;

template <typename Window> void Open(std::unique_ptr<Window> &window)
{
    if (!window)
        window = std::make_unique<Window>();
    window->present();
}

} // namespace

void OpenRouteEditor()
{
    Open(routeEditor);
}

void OpenAssignmentEditor()
{
    Open(assignmentEditor);
}

void OpenAccessoryListEditor()
{
    Open(accessoryListEditor);
}

QStringList UnwrittenTables()
{
    QStringList captions;
    for (const BlockEditor *window : std::initializer_list<const BlockEditor *>{
             routeEditor.get(), assignmentEditor.get(), accessoryListEditor.get()}) {
        if (window != nullptr && window->hasUnwrittenChanges())
            captions += window->windowTitle();
    }
    return captions;
}

void ResetEditors()
{
    routeEditor.reset();
    assignmentEditor.reset();
    accessoryListEditor.reset();
}

} // namespace hr::ui
