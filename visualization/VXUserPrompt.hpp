#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtWidgets/QMessageBox>

#include <functional>

class KXColorButton;
class QDialog;
class QWidget;

/**
 * The one place where the library asks the user something: message boxes with
 * standard or own buttons (and a "do not show again" check box), files to open
 * or write, a line of text, a colour, or a dialog of its own. Each goes
 * through a replaceable handler, so that automated runs (tests, scripted
 * viewers) answer without a modal dialog blocking the event loop.
 */
class KXVTKLIB_EXPORT VXUserPrompt
{
public:
  struct Question
  {
    QMessageBox::Icon icon = QMessageBox::Information;
    QString title;
    QString text;
    QMessageBox::StandardButtons buttons = QMessageBox::Ok;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
  };

  /** A question answered by one of its own buttons, optionally with a check box under the text. */
  struct Choice
  {
    QMessageBox::Icon icon = QMessageBox::Question;
    QString title;
    QString text;
    /** Button texts, left to right as the platform orders them. */
    QStringList buttons;
    /** The button that closing the box or Escape stands for; -1 when there is none. */
    int cancelButton = -1;
    /** Text of the check box; empty for none. */
    QString checkBoxText;
  };

  /** The button chosen (its index in Choice::buttons, -1 when closed) and the check box. */
  struct ChoiceAnswer
  {
    int button = -1;
    bool checkBoxChecked = false;
  };

  using AskHandler = std::function<QMessageBox::StandardButton(const Question&)>;
  using ChoiceHandler = std::function<ChoiceAnswer(const Choice&)>;
  /** Answers a colour request: the colour, or an invalid colour when cancelled. */
  using ColorHandler = std::function<QColor(const QColor& initial, const QString& title)>;
  /** Runs a dialog of the library's own and gives what exec() gives. */
  using DialogHandler = std::function<int(QDialog& dialog)>;
  using OpenFileHandler = std::function<QString(const QString& title, const QString& filter)>;
  using SaveFileHandler = std::function<QString(const QString& title, const QString& filter)>;
  /** Answers a text question: the text, or an empty string when cancelled. */
  using TextHandler =
    std::function<QString(const QString& title, const QString& label, const QString& text)>;
  /** Runs a fully built message box (custom buttons included) and gives what exec() gives. */
  using BoxHandler = std::function<int(QMessageBox& box)>;

  /** Shows the question (or passes it to the installed handler) and gives the button chosen. */
  static QMessageBox::StandardButton ask(QWidget* parent, const Question& question);
  /**
   * Shows a box with the choice's own buttons. Without a choice handler the box
   * runs through exec(QMessageBox&), so a box handler answers it too.
   */
  static ChoiceAnswer choose(QWidget* parent, const Choice& choice);
  /** Asks for a colour; invalid when cancelled. */
  static QColor getColor(QWidget* parent, const QColor& initial, const QString& title);
  /** Makes a colour button of the library ask through getColor(), under @p title. */
  static void routeColorButton(KXColorButton* button, const QString& title);
  /** Runs one of the library's own dialogs modally, or passes it to the installed handler. */
  static int execDialog(QDialog& dialog);
  /** Asks for a file to open; empty when cancelled. */
  static QString getOpenFileName(QWidget* parent, const QString& title, const QString& filter);

  /** Asks for a file to write; empty when cancelled. */
  static QString getSaveFileName(QWidget* parent, const QString& title, const QString& filter);
  /** Asks for a line of text; empty when cancelled. */
  static QString getText(QWidget* parent, const QString& title, const QString& label,
                         const QString& text = QString());
  /** Runs the box modally, or passes it to the installed handler. */
  static int exec(QMessageBox& box);

  /** Installs handlers; an empty handler restores the real dialogs. */
  static void setAskHandler(AskHandler handler);
  static void setOpenFileHandler(OpenFileHandler handler);
  static void setSaveFileHandler(SaveFileHandler handler);
  static void setTextHandler(TextHandler handler);
  static void setBoxHandler(BoxHandler handler);
  static void setChoiceHandler(ChoiceHandler handler);
  static void setColorHandler(ColorHandler handler);
  static void setDialogHandler(DialogHandler handler);
  /** Restores every real dialog at once. */
  static void resetHandlers();
};
