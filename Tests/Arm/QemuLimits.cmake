# The tests that qemu-user cannot run, with what it lacks. Read by ctest, which shows them as disabled.
cmake_minimum_required(VERSION 3.25)
set(beyond_qemu
  # qemu 7.2 refuses setsockopt(IP_MULTICAST_IF): nothing can be multicast.
  MulticastService.BaseSendsAnEmptyDatagramOnce
  MulticastService.InterfaceThatCannotSendDelaysNoOther
  MulticastService.SendingSocketsJoinTheGroup
  MulticastService.SocketsGoWithTheObject
  PFMulticastSocket.SendSocketUsesTheInterface
  UpnpServer.EachInterfaceGetsOneDatagramWithTheFirstOnesAddress
  UpnpServer.HostAnnouncesWithItsStart
  UpnpServer.OnlyEightInterfacesAreServed
  UpnpServer.SecondStartAnnouncesAgainWithTheSameUdn
  UpnpServer.StopClosesThePortAndSaysNothing
  # qemu 7.2 refuses getsockopt(SO_BINDTODEVICE), with which the test looks.
  PFMulticastSocket.CreateBindsToTheInterface
  # Of getsockopt(TCP_INFO) it gives the first four bytes only.
  NC_Listener.FiveConnectionsMayWait
  # A program of the device cannot start one of the device: the machine's kernel runs its own kind only.
  OnvifKeys.ThatNobodyKnowsEndTheProcess)

# `netserver_tests` has the tests of the program that was read last.
foreach(test IN LISTS netserver_tests)
  if(test IN_LIST beyond_qemu)
    set_tests_properties("${test}" PROPERTIES DISABLED TRUE)
  endif()
endforeach()
