#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QString>
#include <QtWidgets/QMessageBox>

#include <functional>

class QWidget;

/**
 * The one place where the pipeline asks the user something: a message box
 * with standard buttons, or a file to open. Both go through replaceable
 * handlers, so that automated runs (tests, scripted viewers) answer without a
 * modal dialog blocking the event loop.
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

  using AskHandler = std::function<QMessageBox::StandardButton(const Question&)>;
  using OpenFileHandler = std::function<QString(const QString& title, const QString& filter)>;
  using SaveFileHandler = std::function<QString(const QString& title, const QString& filter)>;
  /** Answers a text question: the text, or an empty string when cancelled. */
  using TextHandler =
    std::function<QString(const QString& title, const QString& label, const QString& text)>;
  /** Runs a fully built message box (custom buttons included) and gives what exec() gives. */
  using BoxHandler = std::function<int(QMessageBox& box)>;

  /** Shows the question (or passes it to the installed handler) and gives the button chosen. */
  static QMessageBox::StandardButton ask(QWidget* parent, const Question& question);
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
};
