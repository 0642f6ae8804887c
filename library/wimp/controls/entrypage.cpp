#include "library/wimp/controls/entrypage.h"

#include "library/system/path.h"
#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtGui/QIcon>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QResizeEvent>
#include <QtWidgets/QCommandLinkButton>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace {

constexpr int Margin = 24;
constexpr int LineWidth = 300;
constexpr int TileGap = 8;
constexpr QSize PictureSize(160, 120);
constexpr QSize LineIconSize(32, 32);

// As wide as the page leaves, and as high as the tiles then need.
class TTileField : public QWidget
{
public:
    using QWidget::QWidget;

    void Add(QWidget* tile)
    {
        tile->setParent(this);
        TileSize = TileSize.expandedTo(tile->sizeHint());
        Tiles.push_back(tile);
        tile->show();
        Arrange();
    }

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QWidget::resizeEvent(event);
        Arrange();
    }

private:
    void Arrange()
    {
        const int across = TileSize.width() + TileGap;
        const int down = TileSize.height() + TileGap;
        const int columns = qMax(1, (width() + TileGap) / across);
        for (int i = 0; i < Tiles.size(); ++i)
            Tiles[i]->setGeometry(QRect(QPoint(i % columns * across, i / columns * down), TileSize));
        setMinimumSize(TileSize.width(), (Tiles.size() + columns - 1) / columns * down);
    }

    vector<QWidget*> Tiles;
    QSize TileSize = PictureSize;
};

class TEntryArea : public QScrollArea
{
public:
    TEntryArea(QWidget* parent, TEntryPage& page) : QScrollArea(parent), Page(page)
    {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setFocusPolicy(Qt::NoFocus);
        setBackgroundRole(QPalette::Base);
        Clear();
    }

    void Clear()
    {
        QWidget* page = new QWidget;
        page->setBackgroundRole(QPalette::Base);
        page->setAutoFillBackground(true);
        Lines = new QVBoxLayout;
        Lines->setSpacing(2);
        Lines->setContentsMargins(0, 0, 0, 0);
        QWidget* lineField = new QWidget;
        lineField->setFixedWidth(LineWidth);
        lineField->setLayout(Lines);
        Heading = MakeHeading("");
        Heading->hide();
        Tiles = new TTileField;
        QVBoxLayout* right = new QVBoxLayout;
        right->addWidget(Heading);
        right->addWidget(Tiles);
        right->addStretch();
        QHBoxLayout* columns = new QHBoxLayout(page);
        columns->setContentsMargins(Margin, Margin, Margin, Margin);
        columns->setSpacing(Margin);
        columns->addWidget(lineField, 0, Qt::AlignTop);
        columns->addLayout(right, 1);
        // An entry that has just been chosen may be among those that go.
        if (QWidget* old = takeWidget()) {
            old->hide();
            old->deleteLater();
        }
        setWidget(page);
        page->show();
    }
    QLabel* MakeHeading(const char* text)
    {
        QLabel* label = new QLabel(ToQt(text));
        QFont font = label->font();
        font.setPointSizeF(font.pointSizeF() * 1.3);
        font.setBold(true);
        label->setFont(font);
        label->setTextFormat(Qt::PlainText);
        label->setContentsMargins(0, 4, 0, 4);
        return label;
    }

    QVBoxLayout* Lines = nullptr;
    QLabel* Heading = nullptr;
    TTileField* Tiles = nullptr;

protected:
    void showEvent(QShowEvent* event) override
    {
        QScrollArea::showEvent(event);
        Page.FillStale();
    }

private:
    TEntryPage& Page;
};

TEntryArea* EntriesOf(TWindowHandle handle)
{
    return static_cast<TEntryArea*>(handle);
}

// Outside a dialog a button hears of the space bar alone.
class TReturnPresses : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const QKeyEvent& key = *static_cast<QKeyEvent*>(event);
        if ((key.key() != Qt::Key_Return && key.key() != Qt::Key_Enter) || key.isAutoRepeat())
            return false;
        static_cast<QAbstractButton*>(object)->click();
        return true;
    }
};

// The ampersand of a name stays one.
QString ToLabel(const TString& text)
{
    return ToQt(text.Print()).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

// In the middle; what the picture leaves of the place is clear.
QIcon LoadTilePicture(const TString& path)
{
    TString own;
    ToSystemPath(path, own);
    const QImage picture(ToQt(own.Print()));
    if (picture.isNull())
        return LoadPictureIcon(PI_GRAPH);
    if (picture.size() == PictureSize * 2)
        return QIcon(QPixmap::fromImage(picture));
    QPixmap pixmap(PictureSize * 2);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const QSize size = picture.size().scaled(pixmap.size(), Qt::KeepAspectRatio);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(
        QRect(QPoint((pixmap.width() - size.width()) / 2, (pixmap.height() - size.height()) / 2), size),
        picture);
    return QIcon(pixmap);
}

// Keeps the place of a picture that is still to come.
const QIcon& GetEmptyPicture()
{
    static const QIcon Empty = [] {
        QPixmap pixmap(PictureSize);
        pixmap.fill(Qt::transparent);
        return QIcon(pixmap);
    }();
    return Empty;
}

void Name(QAbstractButton& button, const TEntryPage::TEntry& entry)
{
    button.setObjectName(QStringLiteral("entry%1").arg(entry.Id));
    button.setAccessibleName(ToQt(entry.Text.Print()));
    button.setAccessibleDescription(ToQt(entry.Detail.Print()));
    button.setToolTip(ToQt(entry.Help.Print()));
    button.installEventFilter(new TReturnPresses(&button));
}

} // namespace

bool TEntryPage::Create(TWindow* owner, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    TEntryArea* area = new TEntryArea(owner->GetHandle(), *this);
    area->setObjectName(ToQt(name));
    area->hide();
    Bind(area, owner);
    return true;
}

void TEntryPage::Refresh()
{
    IsStale = true;
    if (GetHandle() != nullptr && GetHandle()->isVisible())
        FillStale();
}

void TEntryPage::FillStale()
{
    if (!IsStale || GetHandle() == nullptr)
        return;
    IsStale = false;
    EntriesOf(GetHandle())->Clear();
    Fill();
}

void TEntryPage::AddHeading(const char* text)
{
    if (GetHandle() != nullptr)
        EntriesOf(GetHandle())->Lines->addWidget(EntriesOf(GetHandle())->MakeHeading(text));
}

void TEntryPage::AddLine(const TEntry& entry)
{
    if (GetHandle() == nullptr)
        return;
    QCommandLinkButton* line = new QCommandLinkButton(ToLabel(entry.Text), ToQt(entry.Detail.Print()));
    line->setIcon(LoadPictureIcon(entry.Icon != 0 ? entry.Icon : PI_GRAPH));
    line->setIconSize(LineIconSize);
    Name(*line, entry);
    const int id = entry.Id;
    QObject::connect(line, &QAbstractButton::clicked, GetHandle(), [this, id] { Report(id, CC_BUTTON); });
    EntriesOf(GetHandle())->Lines->addWidget(line);
}

void TEntryPage::AddNote(const char* text)
{
    if (GetHandle() == nullptr)
        return;
    QLabel* label = new QLabel(ToQt(text));
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    label->setTextFormat(Qt::PlainText);
    label->setContentsMargins(0, Margin, 0, 0);
    EntriesOf(GetHandle())->Lines->addWidget(label);
}

void TEntryPage::SetTileHeading(const char* text)
{
    if (GetHandle() == nullptr)
        return;
    EntriesOf(GetHandle())->Heading->setText(ToQt(text));
    EntriesOf(GetHandle())->Heading->show();
}

void TEntryPage::AddTile(const TEntry& entry)
{
    if (GetHandle() == nullptr)
        return;
    QToolButton* tile = new QToolButton;
    tile->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    tile->setAutoRaise(true);
    tile->setFocusPolicy(Qt::StrongFocus);
    tile->setText(ToLabel(entry.Text));
    tile->setIcon(GetEmptyPicture());
    tile->setIconSize(PictureSize);
    // The page is there before its pictures are, which are read one by one between what a person does.
    const TString picture = entry.Picture;
    QTimer::singleShot(0, tile, [tile, picture] { tile->setIcon(LoadTilePicture(picture)); });
    Name(*tile, entry);
    const int id = entry.Id;
    QObject::connect(tile, &QAbstractButton::clicked, GetHandle(), [this, id] { Report(id, CC_BUTTON); });
    EntriesOf(GetHandle())->Tiles->Add(tile);
}
