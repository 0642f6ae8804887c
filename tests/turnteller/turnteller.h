#pragma once

#include <QtCore/QAbstractNativeEventFilter>
#include <QtGui/QGenericPlugin>

#include <vector>

#include <xcb/xcb.h>

// Tells whoever asks over the display when the program's message loop has turned so many times since the
// question came. What the display had sent before the question has been dealt with by then, however long it
// took.
//
// It is the message { number of the question, turns, window of the asker } to the window that a property of
// the root window names, and is answered by the message { number of the question }. Both have the property's
// name.
class TTurnTeller : public QObject, public QAbstractNativeEventFilter
{
    Q_OBJECT
public:
    TTurnTeller();
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override;

private:
    struct TQuestion
    {
        uint32_t Number;
        uint32_t Turns;
        xcb_window_t Asker;
    };
    void OnTurn();
    void OnWait();
    void Answer(const TQuestion& question);

    xcb_connection_t* Connection = nullptr;
    xcb_window_t Window = 0;
    xcb_atom_t Name = 0;
    std::vector<TQuestion> Questions;
};

// Qt itself loads it into the program under test, which need know nothing of it.
class TTurnTellerPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "turnteller.json")
public:
    QObject* create(const QString& name, const QString& parameters) override;
};
