// Values and queues, for comparison.
namespace cpp velmo.bench.peer

service Store {
  void set_value(1: string name, 2: binary value),
  binary get_value(1: string name),
  void send_packet(1: string name, 2: binary packet),
  binary receive_packet(1: string name)
}
