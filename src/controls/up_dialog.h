// Runs a function on a thread of its own behind a small modal dialog.
#pragma once

#include <QDialog>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>

namespace velmora::controls {

class CUPDialog : public QDialog {
  Q_OBJECT

  struct Shared;

 public:
  /// What the function sends to the dialog.
  enum Message : std::uint32_t {
    kLockMessage = 2258,      ///< the user has no way out any more
    kEndMessage = 2259,       ///< ends the dialog with the number
    kPositionMessage = 2260,  ///< sets the bar to the number
    kTextMessage = 2261,
    kCancelMessage = 2262,   ///< cancels, also what is locked
    kPercentMessage = 2263,  ///< sets the text beside the bar
  };

  enum Result {
    kDone = 1,             ///< the function gave true
    kNotDone = 2,          ///< it gave false, or was not called
    kCancelled = 0x10002,  ///< the user did not wait for its end
  };

  /// The dialog as the function sees it; usable from any thread, and for longer than the dialog lives.
  class Link {
   public:
    bool IsCancelled() const;

    /// Like Call, for a message. Both do nothing once the dialog is cancelled or gone.
    void Send(Message message, int number, const QString& text = {}) const;

    /// Calls something in the thread of the windows and waits until it is done. False: it will not be done.
    bool Call(std::function<void()> call) const;

   private:
    friend class CUPDialog;
    explicit Link(std::shared_ptr<Shared> shared) : shared_(std::move(shared)) {}
    std::shared_ptr<Shared> shared_;
  };

  /// Raises nothing. A function that keeps working after a cancel is left to itself after a second and must
  /// own all that it uses.
  using Function = std::function<bool(const Link&)>;

  CUPDialog(QWidget* parent, const QString& caption, Function function);
  ~CUPDialog() override;

  /// Shows the dialog and starts the function; returns a Result when the dialog has ended.
  int Run();

  /// The way out of button, close box and Escape.
  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  static void Work(const std::shared_ptr<Shared>& shared, const Function& function);
  void OnMessage(Message message, int number, const QString& text);
  void OnCancel();
  void EndWorker();

  std::shared_ptr<Shared> shared_;
  Function function_;
  std::thread worker_;
  bool locked_ = false;
};

}  // namespace velmora::controls
